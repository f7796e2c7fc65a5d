#include "TIN/PointsHeader.h"

#include <unistd.h>

#include <cstring>

#include "TIN/PointRecord.h"
#include "io/InputFile.h"
#include "io/OutputFile.h"

namespace corvane {

namespace {

using Doubles = std::array<double, 6>;

}  // namespace

std::array<char, PointsHeader::kBytes> PointsHeader::Pack() const {
  const Doubles doubles = {minX, maxY, maxX, minY, spacingX, spacingY};
  std::array<char, kBytes> bytes{};
  std::memcpy(bytes.data(), &nPoints, sizeof nPoints);
  std::memcpy(bytes.data() + sizeof nPoints, doubles.data(), sizeof doubles);
  return bytes;
}

PointsHeader PointsHeader::Unpack(const std::array<char, kBytes>& bytes) {
  PointsHeader header;
  Doubles doubles{};
  std::memcpy(&header.nPoints, bytes.data(), sizeof header.nPoints);
  std::memcpy(doubles.data(), bytes.data() + sizeof header.nPoints, sizeof doubles);
  header.minX = doubles[0];
  header.maxY = doubles[1];
  header.maxX = doubles[2];
  header.minY = doubles[3];
  header.spacingX = doubles[4];
  header.spacingY = doubles[5];
  return header;
}

std::optional<PointsHeader> PointsHeader::Read(InputFile& file) {
  std::array<char, kBytes> bytes{};
  if (file.Read(bytes.data(), kBytes) != kBytes) return std::nullopt;
  return Unpack(bytes);
}

std::optional<PointsHeader> PointsHeader::ReadForUpdate(const std::string& path) {
  InputFile file(path);
  if (!file.IsOpen() || access(path.c_str(), W_OK) != 0) return std::nullopt;
  return Read(file);
}

bool PointsHeader::Update(const std::string& path) const {
  const auto bytes = Pack();
  return UpdateFileStart(path, bytes.data(), bytes.size());
}

}  // namespace corvane
