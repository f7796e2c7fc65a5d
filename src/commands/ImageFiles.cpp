#include "commands/ImageFiles.h"

#include "io/Paths.h"
#include "io/TextCase.h"
#include "ui/ErrorTexts.h"

namespace corvane {

bool HasPixels(const ErdasImg& image) {
  const auto [cols, rows] = image.GetSize();
  return image.GetBands() && cols > 0 && rows > 0 && image.GetBandCount() > 0;
}

bool ReadImage(const std::string& path, ErdasImg& image) {
  const int status = image.Read(path);
  if (status == 1 && HasPixels(image)) return true;
  // Read tells that a file does not open, and that there is no memory for the bands of a .lan.
  const bool isTold = status == -1 ? !path.empty() : status == 1 && !image.GetBands();
  if (!isTold) ShowWarning(OpenErrorText(path));
  if (HasPixels(image)) return false;
  image.Free();
  *image.GetHeader() = ErdasHeader();
  image.BytesPerPixelOf(kPackByte);
  return false;
}

bool WriteImage(const std::string& path, ErdasImg& image) {
  return IsWritten(path, image.Write(path));
}

bool IsWritten(const std::string& path, int status) {
  if (status == 1) return true;
  if (!EqualIgnoringCase(FileExtension(path), ".lan")) ShowWarning(WriteErrorText(path));
  return false;
}

void TellWritten(const std::string& path, const ImageSize& size, const std::string& more) {
  Ui().SetStatusText(0, "Written to " + path + ": " + std::to_string(size.cy) + " rows, " +
                            std::to_string(size.cx) + " columns." + more);
}

CommandResult StoreImage(const std::string& path, ErdasImg& image, bool isInputRead) {
  if (!WriteImage(path, image)) return CommandResult::Failed;
  TellWritten(path, image.GetSize());
  return ResultOf(isInputRead);
}

}  // namespace corvane
