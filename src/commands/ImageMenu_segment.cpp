// The graph segmentation of the menu Image.

#include <exception>

#include "Segmentation/SegmentImage.h"
#include "Segmentation/SegmentParam.h"
#include "commands/Failures.h"
#include "commands/ImageFiles.h"
#include "commands/ImageMenu.h"
#include "io/OutputFile.h"

namespace corvane {

namespace {

// Segments the image, whose own pixels are let go before. An empty result without memory.
template <typename Pixel>
PlaneImage<Rgb> SegmentBands(ErdasImg& image, const SegmentParam& param, std::int32_t& regionCount) {
  const auto [cols, rows] = image.GetSize();
  if (!HasMemoryToSegment(std::int64_t{cols} * rows)) return {};
  try {
    PlaneImage<Pixel> pixels(cols, rows);
    image.GetInterleaved(reinterpret_cast<std::uint8_t*>(pixels.pixels.data()));
    image.Free();
    return SegmentImage(pixels, param.m_sigma, param.m_scale, param.m_minRegionSize, regionCount);
  } catch (const std::exception&) {
    return {};
  }
}

// Tries it without leaving anything, as segmenting takes long.
bool MayWrite(const std::string& path) {
  return OutputFile(path).IsOpen();
}

// Writes the colours of the regions with the place and cell of the header.
int WriteRegions(const std::string& path, ErdasHeader header, PlaneImage<Rgb>& regions) {
  header.bandCount = 3;
  header.packType = kPackByte;  // whatever the image had
  ErdasImg output;
  if (const int status = output.Create(header, true); status < 0) return status;
  return output.WriteInterleaved(path, reinterpret_cast<const std::uint8_t*>(regions.pixels.data()));
}

}  // namespace

CommandResult OnSegmention(CCorvaneView&) {
  SegmentParam param;
  if (!param.Ask()) return CommandResult::Cancelled;
  WaitCursor wait;
  ErdasImg image;
  const bool isRead = !param.m_inputPath.empty() && ReadImage(param.m_inputPath, image);
  if (!image.HasPixels()) return FailWith("Read image failed!");
  const std::int32_t nBands = image.GetBandCount();
  if (nBands != 1 && nBands != 3) return FailWith("The image has more than 3 bands!");

  if (!MayWrite(param.m_outputPath)) return FailToWrite(param.m_outputPath);

  const std::string notes = CutText(image) + AsBytesText(image.GetPackType());
  std::int32_t regionCount = 0;
  PlaneImage<Rgb> regions = nBands == 3 ? SegmentBands<Rgb>(image, param, regionCount)
                                        : SegmentBands<std::uint8_t>(image, param, regionCount);
  if (regions.pixels.empty()) return FailWithWarning(ErdasImg::kNoMemoryText);
  image.GetHeader()->classCount = static_cast<std::uint16_t>(regionCount);  // Kept: cut to 16 bits
  if (WriteRegions(param.m_outputPath, *image.GetHeader(), regions) != 1) {
    return FailToWrite(param.m_outputPath);
  }
  TellWritten(param.m_outputPath, image.GetSize(), " Regions: " + std::to_string(regionCount) + "." + notes);
  return ResultOf(isRead);
}

}  // namespace corvane
