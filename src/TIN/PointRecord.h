#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>

namespace corvane {

static_assert(std::endian::native == std::endian::little, "files are little-endian and copied as they are");

// One point of a point set, and one corner of a triangle in a ".tin" file.
struct PointRecord {
  std::int32_t id = 0;  // index at read time; negative: deleted or rejected
  double x = 0.0;       // ground units
  double y = 0.0;
  double z = 0.0;
  double value = 0.0;  // the producer's: intensity, match score, or 1.0 for none

  friend bool operator==(const PointRecord&, const PointRecord&) = default;
};

// Stored forms, without padding: a vertex is id, x, y, z, value; a point of a ".pts" file leaves out the id.
constexpr std::size_t kVertexBytes = 36;
constexpr std::size_t kPointBytes = 32;
constexpr std::size_t kTriangleBytes = 3 * kVertexBytes;  // of a ".tin" file: its corners

static_assert(offsetof(PointRecord, value) == offsetof(PointRecord, x) + 24, "x to value are one block");

// Writes the 32-byte form to `to`.
inline void PackPoint(const PointRecord& record, char* to) {
  std::memcpy(to, reinterpret_cast<const char*>(&record) + offsetof(PointRecord, x), kPointBytes);
}

// The record that the 32 bytes at `from` hold, under the given id.
inline PointRecord UnpackPoint(const char* from, std::int32_t id) {
  PointRecord record;
  record.id = id;
  std::memcpy(reinterpret_cast<char*>(&record) + offsetof(PointRecord, x), from, kPointBytes);
  return record;
}

// Writes the 36-byte form to `to`.
inline void PackVertex(const PointRecord& record, char* to) {
  std::memcpy(to, &record.id, sizeof record.id);
  PackPoint(record, to + sizeof record.id);
}

// The record that the 36 bytes at `from` hold.
inline PointRecord UnpackVertex(const char* from) {
  std::int32_t id = 0;
  std::memcpy(&id, from, sizeof id);
  return UnpackPoint(from + sizeof id, id);
}

// Whole blocks; `to` or `from` holds as many stored records as `records` has.
inline void PackPoints(std::span<const PointRecord> records, char* to) {
  for (std::size_t i = 0; i < records.size(); ++i) PackPoint(records[i], to + i * kPointBytes);
}
inline void PackVertices(std::span<const PointRecord> records, char* to) {
  for (std::size_t i = 0; i < records.size(); ++i) PackVertex(records[i], to + i * kVertexBytes);
}
inline void UnpackVertices(const char* from, std::span<PointRecord> records) {
  for (std::size_t i = 0; i < records.size(); ++i) records[i] = UnpackVertex(from + i * kVertexBytes);
}
// The records get the ids firstId, firstId + 1, ...
inline void UnpackPoints(const char* from, std::int32_t firstId, std::span<PointRecord> records) {
  for (std::size_t i = 0; i < records.size(); ++i) {
    records[i] = UnpackPoint(from + i * kPointBytes, firstId + static_cast<std::int32_t>(i));
  }
}

}  // namespace corvane
