// The commands on the menus Utilities > Image and Image that make images from images.

#include "commands/Choosers.h"
#include "commands/Failures.h"
#include "commands/ImageExtent.h"
#include "commands/ImageFiles.h"
#include "commands/UtilitiesMenu.h"
#include "erdasimg/RasterTools.h"
#include "forms/ValueInput.h"
#include "io/Paths.h"
#include "io/TextCase.h"
#include "numerics/Truncate.h"
#include "shell/CommandShapes.h"

namespace corvane {

namespace {

constexpr auto kSave = FileChooser::Mode::Save;

const FileChooser kOpenForeign{
    .filter = "All Files (*.*)|*.*|Lan Files (*.lan)|*.lan|Bil Files (*.bil)|*.bil|",
    .title = "Choose a Image."};
const FileChooser kSaveLan{.mode = kSave, .filter = "Lan Files (*.lan)|*.lan|", .title = "Choose a Image."};
const FileChooser kOpenWhole{.filter = kImageFilter, .title = "Choose an Image to Subset"};
const FileChooser kSavePart{.mode = kSave, .filter = kImageFilter, .title = "Choose the file to save to"};
const FileChooser kSavePartText{.mode = kSave,
                                .filter = "Text Files (*.txt)|*.txt|All Files (*.*)|*.*|",
                                .title = "Choose the file to save to"};
const FileChooser kSaveImage{.mode = kSave, .filter = kImageFilter, .title = "Choose an Image."};

// Why a grid of raw floats could not be read, as ReadFloatGrid says.
std::string NoFloatGridText(int status, const std::string& path, const ErdasImg& image) {
  const std::string hdrText = OpenErrorText(DerivedName(path, ".hdr"));
  if (status == -1) return hdrText;
  const auto [cols, rows] = image.GetSize();
  if (cols <= 0 || rows <= 0) return hdrText + "\nIts first two lines give no columns and rows.";
  return status == -2 ? OpenErrorText(path) : ErdasImg::kNoMemoryText;
}

// False if the grid of raw floats could not be read, or has no cells, which has been shown.
bool ReadGrid(const std::string& path, ErdasImg& image) {
  const int status = image.ReadFloatGrid(path);
  TellCut(image);
  if (status == 1 && image.HasPixels()) return true;
  ShowWarning(NoFloatGridText(status, path, image));
  return false;
}

using Store = CommandResult (*)(const std::string& path, ErdasImg& image, bool isInputRead,
                                const std::string& more);

CommandResult CutSubset(const FileChooser& save, Store store) {
  const auto paths = ChooseInOrder({kOpenWhole, save});
  if (!paths) return CommandResult::Cancelled;
  ErdasImg image;
  const bool isRead = ReadImage((*paths)[0], image);
  ImageRect rect;
  if (GetPixelExtent(*image.GetHeader(), rect) < 0) return CommandResult::Cancelled;
  if (image.ClipToImage(rect) < 0) return ResultOf(isRead);

  WaitCursor wait;
  const auto [left, top] = image.GetStart();
  ErdasImg subset;
  image.ExtractTo(rect.left - left, rect.right - left, rect.top - top, rect.bottom - top, true, subset);
  if (!subset.GetBands()) return CommandResult::Failed;
  return store((*paths)[1], subset, isRead, CutText(image));
}

}  // namespace

CommandResult OnImageConversion(CCorvaneView&) {
  const auto path = ChooseFile(kOpenForeign);
  if (!path) return CommandResult::Cancelled;
  const bool isLan = ErdasImg::IsLan(*path);
  if (!isLan && !EqualIgnoringCase(FileExtension(*path), ".bil")) return CommandResult::Done;
  const auto outPath = ChooseFile(kSaveLan);
  if (!outPath) return CommandResult::Cancelled;

  WaitCursor wait;
  ErdasImg image;
  const bool isRead = isLan ? ReadImage(*path, image) : ReadGrid(*path, image);
  if (!isRead && !isLan) return CommandResult::Failed;
  return StoreImage(*outPath, image, isRead, CutText(image));
}

CommandResult OnSubset(CCorvaneView&) {
  return CutSubset(kSavePart, StoreImage);
}

CommandResult OnSubsetToText(CCorvaneView&) {
  return CutSubset(kSavePartText, StoreText);
}

CommandResult OnSampleImage(CCorvaneView&) {
  const auto path = ChooseFile(kOpenAnImage);
  if (!path) return CommandResult::Cancelled;
  ValueInput factor{.value = 2.0};
  if (!factor.Ask()) return CommandResult::Cancelled;
  const std::int32_t n = TruncateSaturated(factor.value);
  if (n < 2) return CommandResult::Done;

  WaitCursor wait;
  ErdasImg image;
  const bool isRead = ReadImage(*path, image);
  ErdasImg sampled;
  const int status = SampleImage(image, n, sampled);
  if (status == -2) return FailWithWarning(ErdasImg::kNoMemoryText);
  if (status < 0) return ResultOf(isRead);
  return StoreImage(DerivedName(*path, std::to_string(n) + ".lan"), sampled, isRead, CutText(image));
}

CommandResult OnScalePixelValue(CCorvaneView&) {
  const auto path = ChooseFile(kOpenAnImage);
  if (!path) return CommandResult::Cancelled;
  ValueInput factor{.title = "Input the scale factor", .value = 2.0};
  if (!factor.Ask()) return CommandResult::Cancelled;
  const std::int32_t n = TruncateSaturated(factor.value);
  if (n < 0) return CommandResult::Done;
  const auto outPath = ChooseFile(kSaveImage);
  if (!outPath) return CommandResult::Cancelled;

  WaitCursor wait;
  ErdasImg image;
  const bool isRead = ReadImage(*path, image);
  ErdasImg scaled;
  if (DivideImage(image, n, scaled) < 0) return FailWithWarning(ErdasImg::kNoMemoryText);
  return StoreImage(*outPath, scaled, isRead, CutText(image));
}

CommandResult OnDifferenceImage(CCorvaneView&) {
  const auto paths = ChooseInOrder({kOpenAnImage, kOpenAnImage, kSaveImage});
  if (!paths) return CommandResult::Cancelled;
  WaitCursor wait;
  ErdasImg first;
  ErdasImg second;
  const bool isFirstRead = ReadImage((*paths)[0], first);
  const bool isSecondRead = ReadImage((*paths)[1], second);
  if (first.GetPackType() != second.GetPackType()) ShowWarning("The two images have different data type!");
  ErdasImg difference;
  if (SubtractImages(first, second, difference) < 0) return FailWithWarning(ErdasImg::kNoMemoryText);
  return StoreImage((*paths)[2], difference, isFirstRead && isSecondRead,
                    CutText(first, "The first image") + CutText(second, "The second image"));
}

CommandResult OnImageIoTest(CCorvaneView&) {
  const auto path = ChooseFile(kOpenAImage);
  if (!path) return CommandResult::Cancelled;
  WaitCursor wait;
  ErdasImg image;
  const bool isRead = ReadImage(*path, image);
  return StoreImage(*path + "qvo", image, isRead, CutText(image));
}

}  // namespace corvane
