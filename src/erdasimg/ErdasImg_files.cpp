// The .lan file, and the choice between it and GDAL.

#include <algorithm>
#include <array>

#include "erdasimg/ErdasImg.h"
#include "io/InputFile.h"
#include "io/OutputFile.h"
#include "io/Paths.h"
#include "io/TextCase.h"
#include "ui/ErrorTexts.h"
#include "ui/FrontEnd.h"

namespace corvane {

namespace {

constexpr std::size_t kBlock = std::size_t{1} << 18;  // bytes read at a time

// Bytes of a plane written at a time: the way to the disk of one block begins while the next is copied.
constexpr std::size_t kWriteBlock = std::size_t{1} << 20;

std::size_t LineBytes(const ErdasImg& image) {
  return static_cast<std::size_t>(image.GetSize().cx) * static_cast<std::size_t>(image.GetBytesPerPixel());
}

// The pixels of all bands as a .lan stores them: for each row, a line of each band.
class LineOrder {
 public:
  LineOrder(const BandArray& bands, std::size_t lineBytes) : bands_(bands), lineBytes_(lineBytes) {}

  std::size_t GetBytes() const { return bands_.GetBandBytes() * bands_.size(); }

  // Puts bytes of the file to their bands; `position` counts from the first pixel.
  void Store(std::span<const std::uint8_t> bytes, std::size_t position) const {
    while (!bytes.empty()) {
      const std::size_t line = position / lineBytes_;
      const std::size_t first = position % lineBytes_;
      const std::size_t size = std::min(lineBytes_ - first, bytes.size());
      const auto row = static_cast<std::ptrdiff_t>(line / bands_.size() * lineBytes_ + first);
      const auto band = bands_.GetBand(static_cast<std::int64_t>(line % bands_.size()));
      std::copy_n(bytes.begin(), size, band.begin() + row);
      bytes = bytes.subspan(size);
      position += size;
    }
  }

 private:
  const BandArray& bands_;
  std::size_t lineBytes_;
};

// Returns how many bytes came.
std::size_t ReadLines(InputFile& file, const LineOrder& lines) {
  std::array<std::uint8_t, kBlock> block;
  std::size_t position = 0;
  std::size_t got = 1;
  for (; position < lines.GetBytes() && got > 0; position += got) {
    got = file.Read(block.data(), std::min(kBlock, lines.GetBytes() - position));
    lines.Store({block.data(), got}, position);
  }
  return position;
}

bool WritePlane(OutputFile& file, std::span<const std::uint8_t> plane) {
  while (!plane.empty()) {
    const auto block = plane.first(std::min(kWriteBlock, plane.size()));
    if (!file.Write(block.data(), block.size())) return false;
    plane = plane.subspan(block.size());
  }
  return true;
}

bool WriteZeros(OutputFile& file, std::size_t size) {
  static constexpr std::array<std::uint8_t, 4096> kZeros{};
  for (; size > kZeros.size(); size -= kZeros.size()) {
    if (!file.Write(kZeros.data(), kZeros.size())) return false;
  }
  return file.Write(kZeros.data(), size);
}

// For each row, a line of each band; zeros for a band that is not there.
bool WriteLines(OutputFile& file, const ErdasImg& image) {
  const std::size_t lineBytes = LineBytes(image);
  const std::size_t bandBytes = image.GetBands().GetBandBytes();
  for (std::size_t first = 0; lineBytes > 0 && first + lineBytes <= bandBytes; first += lineBytes) {
    for (std::int32_t band = 0; band < image.GetBandCount(); ++band) {
      const std::uint8_t* const pixels = image.GetBands()[band];
      const bool isWritten = pixels ? file.Write(pixels + first, lineBytes) : WriteZeros(file, lineBytes);
      if (!isWritten) return false;
    }
  }
  return true;
}

}  // namespace

bool ErdasImg::IsLan(const std::string& path) {
  return EqualIgnoringCase(FileExtension(path), ".lan");
}

int ErdasImg::Read(const std::string& path) {
  missingBytes_ = 0;
  if (!IsLan(path)) {
    const int status = ReadForeign(path);
    if (status != 0) return status;
  }
  if (path.empty()) return -1;
  InputFile file(path);
  if (!file.IsOpen()) {
    ShowWarning(OpenErrorText(path));
    return -1;
  }
  const int status = ReadLan(file);
  m_fileName = path;
  return status;
}

int ErdasImg::ReadHeader(const std::string& path) {
  InputFile file(path);
  if (!file.IsOpen()) {
    ShowWarning(OpenErrorText(path));
    return -1;
  }
  file.Read(&m_header, sizeof m_header);
  return 1;
}

int ErdasImg::ReadLan(InputFile& file) {
  missingBytes_ = static_cast<std::int64_t>(sizeof m_header - file.Read(&m_header, sizeof m_header));
  if (!AllocateUpTo(file.BytesLeft().value_or(0) + kMaxMissingBytes, false)) {
    const bool isSize = missingBytes_ == 0 && m_header.cols > 0 && m_header.rows > 0;
    if (isSize) ShowWarning(kNoMemoryText);
    return 1;
  }
  const std::size_t got = GetBandCount() == 1 ? file.Read(m_bands[0], m_bands.GetBandBytes())
                                              : ReadLines(file, {m_bands, LineBytes(*this)});
  missingBytes_ += static_cast<std::int64_t>(m_bands.GetBandBytes() * m_bands.size() - got);
  return 1;
}

int ErdasImg::Write(const std::string& path) {
  if (!IsLan(path)) return WriteGeoTiff(path);
  OutputFile file(path);
  if (file.IsOpen() && WriteLan(file) == 1 && file.Commit()) return 1;
  ShowWarning(WriteErrorText(path));
  return -1;
}

int ErdasImg::WriteLan(OutputFile& file) const {
  if (!file.Write(&m_header, sizeof m_header)) return -1;
  if (m_bands.size() == 0 || m_header.cols <= 0) return 1;
  if (GetBandCount() == 1) return WritePlane(file, m_bands.GetBand(0)) ? 1 : -1;
  return WriteLines(file, *this) ? 1 : -1;
}

}  // namespace corvane
