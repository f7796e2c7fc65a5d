// Pixels as text.

#include <algorithm>
#include <cstring>

#include "erdasimg/ErdasImg.h"
#include "io/NumberText.h"
#include "io/OutputFile.h"
#include "ui/ErrorTexts.h"
#include "ui/FrontEnd.h"

namespace corvane {

namespace {

constexpr std::size_t kBlock = std::size_t{1} << 16;  // bytes of text gathered before they are written

template <typename Pixel>
void AppendPixel(std::string& text, Pixel pixel) {
  if constexpr (std::is_floating_point_v<Pixel>) {
    AppendFixed(text, pixel);
  } else {
    AppendInt(text, pixel);
  }
  text += ' ';
}

// The rows that the band has bytes for.
template <typename Pixel>
bool WriteBand(OutputFile& file, std::span<const std::uint8_t> band, ImageSize size) {
  const std::size_t lineBytes = sizeof(Pixel) * static_cast<std::size_t>(std::max(size.cx, 0));
  std::string text;
  for (std::int32_t row = 0; row < size.cy && !band.empty() && band.size() >= lineBytes; ++row) {
    for (std::size_t at = 0; at < lineBytes; at += sizeof(Pixel)) {
      Pixel pixel;
      std::memcpy(&pixel, &band[at], sizeof pixel);
      AppendPixel(text, pixel);
    }
    text += '\n';
    band = band.subspan(lineBytes);
    if (text.size() < kBlock) continue;
    if (!file.Write(text)) return false;
    text.clear();
  }
  return file.Write(text += '\n');
}

}  // namespace

int ErdasImg::WriteText(const std::string& path) const {
  OutputFile file(path);
  if (file.IsOpen() && WriteTextTo(file) == 1 && file.Commit()) return 1;
  ShowWarning(WriteErrorText(path));
  return -1;
}

int ErdasImg::WriteTextTo(OutputFile& file) const {
  if (!HasTextForm(GetPackType())) return 1;
  for (std::int32_t band = 0; band < GetBandCount() && m_bands[band]; ++band) {
    const bool isWritten = WithPixelType(GetPackType(), [&](auto pixel) {
      return WriteBand<decltype(pixel)>(file, m_bands.GetBand(band), GetSize());
    });
    if (!isWritten) return -1;
  }
  return 1;
}

}  // namespace corvane
