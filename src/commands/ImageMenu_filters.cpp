// The commands on the menu Image that filter an image.

#include "ImgProcess/ImgProcess.h"
#include "commands/Choosers.h"
#include "commands/Failures.h"
#include "commands/FilterTexts.h"
#include "commands/ImageFiles.h"
#include "commands/ImageMenu.h"
#include "forms/ValueInput.h"
#include "io/Paths.h"
#include "shell/CommandShapes.h"

namespace corvane {

namespace {

const FileChooser kOpenToSmooth{.filter = kImageFilter, .title = "Choose an Image to Gaussian Smooth"};
const FileChooser kOpenForGradient{.filter = kImageFilter, .title = "Choose an Image to calculate gradient"};

// The chooser for what is made of an image; it offers the image's name with a suffix.
FileChooser SaveChooser(const std::string& path, const std::string& suffix) {
  return {.mode = FileChooser::Mode::Save,
          .filter = kImageFilter,
          .defaultExtension = "*.lan",
          .defaultName = FileTitle(path) + suffix,
          .title = "Choose the file to save to"};
}

// Asks again while the number is negative. Nothing on Cancel.
std::optional<double> AskNotNegative(const std::string& title, double shown) {
  ValueInput input{.title = title, .value = shown};
  while (input.Ask()) {
    if (!(input.value < 0.0)) return input.value;
    Ui().SetStatusText(0, "Please enter a number that is not negative.");
  }
  return std::nullopt;
}

// Ends a command whose filter of an image with pixels has failed: for want of memory, unless it has told why.
CommandResult FailToFilter(int status) {
  return status == -3 ? CommandResult::Failed : FailWithWarning(ErdasImg::kNoMemoryText);
}

bool IsStored(const std::string& path, ErdasImg& image, const std::string& more) {
  return StoreImage(path, image, true, more) == CommandResult::Done;
}

// Writes the Laplacian, its zero crossings and the list of these beside the image. False if one can't be
// written, which has been shown; the others are written all the same.
bool StoreCrossings(const std::string& path, ErdasImg& laplacian, ErdasImg& marks, const std::string& more) {
  bool isStored = IsStored(DerivedName(path, "_LoG.lan"), laplacian, more);
  isStored = IsStored(DerivedName(path, "_0X.lan"), marks, more) && isStored;
  const std::string listPath = DerivedName(path, "_Pt.txt");
  std::int64_t nMarked = 0;
  if (ImgProcess().WriteMarkedPixels(marks, listPath, &nMarked) < 0) return false;
  Ui().SetStatusText(0,
                     "Written to " + listPath + ": " + std::to_string(nMarked) + " zero crossings." + more);
  return isStored;
}

}  // namespace

CommandResult OnGaussianSmooth(CCorvaneView&) {
  const auto path = ChooseFile(kOpenToSmooth);
  if (!path) return CommandResult::Cancelled;
  ValueInput sigma{.title = "Please input Sigma value of Gaussian", .value = 2.0};
  if (!sigma.Ask()) return CommandResult::Cancelled;
  const auto outPath = ChooseFile(SaveChooser(*path, "_Smooth.lan"));
  if (!outPath) return CommandResult::Cancelled;
  if (!CheckSigma(sigma.value)) return CommandResult::Failed;

  WaitCursor wait;
  ErdasImg image;
  const bool isRead = ReadImage(*path, image);
  if (!image.HasPixels()) return CommandResult::Failed;
  ResultImage smoothed;
  const int status = ImgProcess().GaussianSmooth(image, sigma.value, smoothed);
  if (status < 0) return FailToFilter(status);
  return StoreImage(*outPath, *smoothed, isRead, FilterNotes(image, sigma.value));
}

CommandResult OnGradientImage(CCorvaneView&) {
  const auto path = ChooseFile(kOpenForGradient);
  if (!path) return CommandResult::Cancelled;
  const auto outPath = ChooseFile(SaveChooser(*path, "_Gradient.lan"));
  if (!outPath) return CommandResult::Cancelled;

  WaitCursor wait;
  ErdasImg image;
  const bool isRead = ReadImage(*path, image);
  if (!image.HasPixels()) return CommandResult::Failed;
  ResultImage gradient;
  const int status = ImgProcess().Gradient(image, kPackFloat, gradient);
  if (status == -3) {  // a side file is missing, the result is not
    StoreImage(*outPath, *gradient, isRead, FilterNotes(image));
    return CommandResult::Failed;
  }
  if (status < 0) return FailToFilter(status);
  return StoreImage(*outPath, *gradient, isRead,
                    " Side files: GradientX.lan, GradientY.lan." + FilterNotes(image));
}

CommandResult OnZeroCrossing(CCorvaneView&) {
  const auto path = ChooseFile(kOpenAnImage);
  if (!path) return CommandResult::Cancelled;
  const auto sigma = AskNotNegative("Zero-crossing smoothing sigma:", 3.0);
  if (!sigma) return CommandResult::Cancelled;
  const auto threshold = AskNotNegative("Zero-crossing threshold is:", 0.0);
  if (!threshold) return CommandResult::Cancelled;
  if (!CheckSigma(*sigma)) return CommandResult::Failed;

  WaitCursor wait;
  ErdasImg image;
  const bool isRead = ReadImage(*path, image);
  if (!image.HasPixels()) return CommandResult::Failed;
  image.SetFileName(*path);  // one that came through GDAL has none
  ErdasHeader header = *image.GetHeader();
  header.packType = kPackFloat;
  ErdasImg laplacian;
  if (laplacian.Create(header, false) < 0) return FailWithWarning("Create LoG image error!");
  ImgProcess process;
  const int status = process.LaplacianOfGaussianLowMemory(image, *sigma, laplacian);
  if (status < 0) return FailToFilter(status);
  ErdasImg marks;
  if (marks.Create(*image.GetHeader(), false) < 0 || process.ZeroCrossing(laplacian, *threshold, marks) < 0) {
    return FailWithWarning(ErdasImg::kNoMemoryText);
  }
  return ResultOf(StoreCrossings(*path, laplacian, marks, FilterNotes(image, *sigma)) && isRead);
}

}  // namespace corvane
