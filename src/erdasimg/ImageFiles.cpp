#include "erdasimg/ImageFiles.h"

#include "erdasimg/LanLack.h"
#include "ui/ErrorTexts.h"
#include "ui/FrontEnd.h"

namespace corvane {

namespace {

constexpr int kNoMemory = -3;  // of ErdasImg::Read

// Bytes of the .lan that the image has been read from; as if it were one of a foreign file. Of one without
// bands, for which there was no memory, no more than the header's.
std::int64_t BytesOfFile(const ErdasImg& image) {
  const BandArray& bands = image.GetBands();
  const auto nBandBytes = static_cast<std::int64_t>(bands.GetBandBytes() * bands.size());
  return std::int64_t{sizeof(ErdasHeader)} + nBandBytes - image.GetMissingBytes();
}

// Why there is no image; "" if there is one, or if Read has told it: that the file does not open, or that
// there is no memory for the bands of a .lan.
std::string WhyNoImage(int status, const std::string& path, const ErdasImg& image) {
  if (status == kNoMemory) return ErdasImg::kNoMemoryText;
  if (status == -1) return path.empty() ? OpenErrorText(path) : "";
  switch (LackOf(*image.GetHeader(), BytesOfFile(image))) {
    case LanLack::Header:
      return OpenErrorText(path) + "\nIt is shorter than the header of an image.";
    case LanLack::Size:
      return OpenErrorText(path) + "\nIts header gives no rows, columns or bands.";
    case LanLack::Pixels:
      return image.HasPixels() ? OpenErrorText(path) + "\nMost of its pixels are missing." : "";
    case LanLack::Nothing:
      break;
  }
  return "";
}

void MakeEmpty(ErdasImg& image) {
  image.Free();
  *image.GetHeader() = ErdasHeader();
  image.BytesPerPixelOf(kPackByte);
}

}  // namespace

bool ReadImage(const std::string& path, ErdasImg& image) {
  WaitCursor wait;
  const int status = image.Read(path);
  const std::string failure = WhyNoImage(status, path, image);
  if (!failure.empty()) ShowWarning(failure);
  if (!failure.empty() || !image.HasPixels()) {
    MakeEmpty(image);
    return false;
  }
  TellCut(image);
  if (status == 1) return true;
  ShowWarning(OpenErrorText(path) + "\nThe file is damaged; what could not be read is zero.");
  return false;
}

void TellCut(const ErdasImg& image) {
  const std::string text = CutText(image);
  if (!text.empty()) Ui().SetStatusText(0, text.substr(1));
}

std::string CutText(const ErdasImg& image, const std::string& name) {
  const std::int64_t nMissing = image.GetMissingBytes();
  if (nMissing == 0 || !image.HasPixels()) return "";
  return " " + name + " is cut short: bytes missing: " + std::to_string(nMissing) + ".";
}

std::string AsBytesText(std::uint16_t packType) {
  return BytesOfPackType(packType) > 1 ? " Its pixels count as bytes." : "";
}

bool WriteImage(const std::string& path, ErdasImg& image) {
  return IsWritten(path, image.Write(path));
}

bool IsWritten(const std::string& path, int status) {
  if (status == 1) return true;
  if (!ErdasImg::IsLan(path)) ShowWarning(WriteErrorText(path));  // the other failure is told
  return false;
}

}  // namespace corvane
