#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace corvane {

class InputFile;

// The 52 bytes at the start of a points file, in their order.
struct PointsHeader {
  static constexpr std::size_t kBytes = 52;

  std::int32_t nPoints = 0;
  double minX = 0.0;  // left, top, right, bottom, in ground units
  double maxY = 0.0;
  double maxX = 0.0;
  double minY = 0.0;
  double spacingX = 1.0;
  double spacingY = 1.0;

  std::array<char, kBytes> Pack() const;
  static PointsHeader Unpack(const std::array<char, kBytes>& bytes);

  // The next 52 bytes of a file as a header; nothing if it has fewer.
  static std::optional<PointsHeader> Read(InputFile& file);

  // The header of a file that is there and may be written; nothing otherwise, or for fewer than 52 bytes.
  static std::optional<PointsHeader> ReadForUpdate(const std::string& path);

  // Puts this header in the place of the file's, with one write. False if that fails.
  bool Update(const std::string& path) const;
};

}  // namespace corvane
