#include "commands/ImageFiles.h"

#include "ui/ErrorTexts.h"

namespace corvane {

namespace {

constexpr int kNoMemory = -3;  // of ErdasImg::Read

// Whether the file of a .lan ended within the header. All of the pixels are missing then, too.
bool LacksHeader(const ErdasImg& image) {
  const BandArray& bands = image.GetBands();
  return image.GetMissingBytes() > static_cast<std::int64_t>(bands.GetBandBytes() * bands.size());
}

// Why an image is not, or not wholly, what its file should give; "" if it is, or if Read has told it: that
// the file does not open, or that there is no memory for the bands of a .lan.
std::string WhyNotRead(int status, const std::string& path, const ErdasImg& image) {
  if (status == kNoMemory) return ErdasImg::kNoMemoryText;
  if (status == -1) return path.empty() ? OpenErrorText(path) : "";
  if (LacksHeader(image)) return OpenErrorText(path) + "\nIt is shorter than the header of an image.";
  if (status == 1 && (HasPixels(image) || !image.GetBands())) return "";
  if (!HasPixels(image)) return OpenErrorText(path);
  return OpenErrorText(path) + "\nThe file is damaged; what could not be read is zero.";
}

void SayWritten(const std::string& path, const std::string& what) {
  Ui().SetStatusText(0, "Written to " + path + ": " + what);
}

std::string SizeText(const ImageSize& size) {
  return std::to_string(size.cy) + " rows, " + std::to_string(size.cx) + " columns.";
}

}  // namespace

bool HasPixels(const ErdasImg& image) {
  const auto [cols, rows] = image.GetSize();
  return image.GetBands() && cols > 0 && rows > 0 && image.GetBandCount() > 0;
}

bool ReadImage(const std::string& path, ErdasImg& image) {
  WaitCursor wait;
  const int status = image.Read(path);
  const std::string failure = WhyNotRead(status, path, image);
  if (!failure.empty()) ShowWarning(failure);
  TellCut(image);
  if (HasPixels(image)) return failure.empty();
  image.Free();
  *image.GetHeader() = ErdasHeader();
  image.BytesPerPixelOf(kPackByte);
  return false;
}

void TellCut(const ErdasImg& image) {
  const std::string text = CutText(image);
  if (!text.empty()) Ui().SetStatusText(0, text.substr(1));
}

std::string CutText(const ErdasImg& image, const std::string& name) {
  const std::int64_t nMissing = image.GetMissingBytes();
  if (nMissing == 0 || !HasPixels(image)) return "";
  return " " + name + " is cut short: bytes missing: " + std::to_string(nMissing) + ".";
}

bool WriteImage(const std::string& path, ErdasImg& image) {
  return IsWritten(path, image.Write(path));
}

bool IsWritten(const std::string& path, int status) {
  if (status == 1) return true;
  if (!ErdasImg::IsLan(path)) ShowWarning(WriteErrorText(path));  // the other failure is told
  return false;
}

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
  if (HasPixels(image)) {
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
