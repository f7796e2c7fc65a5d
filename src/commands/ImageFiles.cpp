#include "commands/ImageFiles.h"

namespace corvane {

namespace {

void SayWritten(const std::string& path, const std::string& what) {
  Ui().SetStatusText(0, "Written to " + path + ": " + what);
}

std::string SizeText(const ImageSize& size) {
  return std::to_string(size.cy) + " rows, " + std::to_string(size.cx) + " columns.";
}

}  // namespace

void TellWritten(const std::string& path, const ImageSize& size, const std::string& more) {
  const char* const form = ErdasImg::IsLan(path) ? "" : " GeoTIFF, without its place on the ground.";
  SayWritten(path, SizeText(size) + form + more);
}

void TellValuesWritten(const std::string& path, const ImageSize& size, const std::string& more) {
  SayWritten(path, SizeText(size) + more);
}

CommandResult StoreImage(const std::string& path, ErdasImg& image, bool isInputRead,
                         const std::string& more) {
  if (!WriteImage(path, image)) return CommandResult::Failed;
  if (image.HasPixels()) {
    TellWritten(path, image.GetSize(), more);
  } else {
    SayWritten(path, "a header without pixels." + more);
  }
  return ResultOf(isInputRead);
}

CommandResult StoreText(const std::string& path, ErdasImg& image, bool isInputRead, const std::string& more) {
  if (image.WriteText(path) != 1) return CommandResult::Failed;
  if (HasTextForm(image.GetPackType())) {
    TellValuesWritten(path, image.GetSize(), more);
  } else {
    SayWritten(path, "no values, the pixel type has no text form." + more);
  }
  return ResultOf(isInputRead);
}

}  // namespace corvane
