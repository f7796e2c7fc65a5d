#include "StereoPair/StereoPair.h"

#include <algorithm>
#include <cmath>

#include "erdasimg/ImageFiles.h"
#include "forms/MatchInput.h"
#include "io/InputFile.h"
#include "io/Paths.h"
#include "numerics/Angles.h"
#include "numerics/Extents.h"
#include "numerics/Truncate.h"
#include "ui/ErrorTexts.h"
#include "ui/FrontEnd.h"

namespace corvane {

namespace {

constexpr double kOverlap = 0.6;

// The pair that a form shows first.
constexpr const char* kTestLeft = "127epi_part.lan";
constexpr const char* kTestRight = "128epi_part.lan";
constexpr const char* kTestPoints = "127epi_part_Match.pts";

// "" for a name without an extension, which leaves the orientation none.
std::string OrientationOf(const std::string& imagePath) {
  if (FileExtension(imagePath).empty()) return "";
  return ExistingOrientation(DerivedName(imagePath, ".ORN"));
}

// Someone else's photo.
std::shared_ptr<AerialPhoto> Borrowed(AerialPhoto* photo) {
  return {std::shared_ptr<void>(), photo};
}

bool ReadsImage(AerialPhoto& photo, const std::string& path) {
  photo.name = path;
  ReadImage(path, photo.image);
  photo.startX = photo.image.GetStart().x;
  photo.startY = photo.image.GetStart().y;
  return photo.image.HasPixels();
}

// What the person should know of a photo that has been loaded.
std::string NotesOn(const AerialPhoto& photo, const std::string& orientationPath, const std::string& side) {
  const bool isWide = photo.image.GetBytesPerPixel() > 1;
  return (photo.IsOriented() ? "" : NoOrientationText(FileName(orientationPath))) +
         CutText(photo.image, "The " + side + " image") +
         (isWide ? " The " + side + " image's pixels count as bytes." : "");
}

// Without a path, `whyNoPath` tells more than that.
int FailToOpenThe(const std::string& name, const std::string& path, const std::string& whyNoPath = "") {
  const std::string noPath = whyNoPath.empty() ? name + ": no file is named." : whyNoPath;
  Ui().SetStatusText(0, path.empty() ? noPath : path + " does not open.");
  ShowMessage("Open " + name + " error!");
  return -1;
}

// The orientation of the photo whose image this is.
bool ReadsOrientation(AerialPhoto& photo, const std::string& path, const std::string& imagePath,
                      const std::string& name) {
  if (photo.LoadOrientation(path) >= 0) return true;
  FailToOpenThe(
      name, path,
      imagePath.empty() ? "" : imagePath + " has no extension: the orientation beside it has no name.");
  return false;
}

// The whole multiple of `spacing` that lies towards zero from the value, itself cut to a whole number.
double SnapToSpacing(double value, double spacing) {
  return std::trunc(std::trunc(value) / spacing) * spacing;
}

// The places from 0 to `length`, both included, at this step.
std::int64_t CountPlaces(double length, double step) {
  return std::max<std::int64_t>(TruncateTo64(length / step + 1.0), 0);
}

bool IsLength(double value) {
  return value > 0.0 && std::isfinite(value);
}

// Why there is no step from place to place; "" if there is.
std::string_view WhyNoSteps(const StereoPair& pair, const LeftGrid& grid) {
  if (!(pair.groundSpacingX > 0.0 && pair.groundSpacingY > 0.0)) {
    return "The ground spacing is not above 0: there is no place to match.";
  }
  if (!IsLength(pair.leftPhoto->pixelSizeX) || !IsLength(pair.leftPhoto->pixelSizeY)) {
    return "The left orientation's pixel size is no number above 0: there is no place to match.";
  }
  if (!std::isfinite(grid.stepCol) || !std::isfinite(grid.stepRow)) {
    return "The ground spacing is too large: there is no place to match.";
  }
  return grid.margin < 0 ? "The row tolerance is negative: there is no place to match." : "";
}

// Why these counts of places are none that can be matched; "" if they can.
std::string_view WhyNoPlaces(const StereoPair& pair, std::int64_t nCols, std::int64_t nRows) {
  const auto [cols, rows] = pair.leftImage->GetSize();
  if (nCols == 0 || nRows == 0) {
    return pair.targetWidth > cols || pair.targetHeight > rows
               ? "The window is larger than the left image: there is no place to match."
               : "The rows searched above and below the window leave no place to match.";
  }
  return nCols > INT32_MAX / nRows
             ? "The ground spacing makes more than 2147483647 places: none of them is matched."
             : "";
}

}  // namespace

StereoPair::StereoPair() = default;

StereoPair::StereoPair(AerialPhoto& left, AerialPhoto& right)
    : leftPhoto(Borrowed(&left)), rightPhoto(Borrowed(&right)), testPoint{666960.0, 201600.0, 243.0} {}

StereoPair::~StereoPair() = default;

int StereoPair::RunMatchDialog() {
  MatchInput form = MakeForm();
  form.demFile.clear();
  if (!hasForm_) {
    form.leftImage = kTestLeft;
    form.rightImage = kTestRight;
    form.matchedPoints = kTestPoints;
  }
  return AskForm(form);
}

int StereoPair::RunMatchDialogForPhotos() {
  MatchInput form = MakeForm();
  return AskForm(form);
}

MatchInput StereoPair::MakeForm() const {
  return {.leftImage = leftImagePath,
          .rightImage = rightImagePath,
          .demFile = demPath,
          .matchedPoints = matchPointsPath,
          .demAccuracy = demAccuracy,
          .windowWidth = targetWidth,
          .windowHeight = targetHeight,
          .groundSpacing = groundSpacingX,
          .matchThreshold = matchThreshold,
          .maxDisparity = maxDisparity};
}

int StereoPair::AskForm(MatchInput& form) {
  if (!form.Ask()) return -1;
  hasForm_ = true;
  targetWidth = form.windowWidth;
  targetHeight = form.windowHeight;
  groundSpacingX = form.groundSpacing;
  groundSpacingY = form.groundSpacing;
  demAccuracy = form.demAccuracy;
  SetImagePaths(form.leftImage, form.rightImage);
  demPath = form.demFile;
  matchPointsPath = form.matchedPoints;
  matchThreshold = form.matchThreshold;
  maxDisparity = form.maxDisparity;
  return 1;
}

void StereoPair::SetImagePaths(const std::string& left, const std::string& right) {
  leftImagePath = left;
  rightImagePath = right;
  leftOrientationPath = OrientationOf(left);
  rightOrientationPath = OrientationOf(right);
}

int StereoPair::LoadPair() {
  if (ownsDem) dem.reset();
  leftPhoto = std::make_shared<AerialPhoto>();
  rightPhoto = std::make_shared<AerialPhoto>();
  leftImage = nullptr;
  rightImage = nullptr;
  const bool areOriented =
      ReadsOrientation(*leftPhoto, leftOrientationPath, leftImagePath, "Left Orientation Parameters File") &&
      ReadsOrientation(*rightPhoto, rightOrientationPath, rightImagePath,
                       "Right Orientation Parameters File");
  if (!areOriented || LoadImagesOfPhotos() < 0) return -1;
  return LoadDem();  // last, so that its own failure is told only of photos that are there
}

int StereoPair::LoadImagesOfPhotos() {
  if (!leftPhoto || !ReadsImage(*leftPhoto, leftImagePath)) return FailToOpenThe("Left Image", leftImagePath);
  if (!rightPhoto || !ReadsImage(*rightPhoto, rightImagePath)) {
    return FailToOpenThe("Right Image", rightImagePath);
  }
  return 1;
}

int StereoPair::LoadDem() {
  if (demPath.empty()) return 1;
  dem = std::make_unique<ErdasImg>();
  ReadImage(demPath, *dem);
  return dem->HasPixels() ? 1 : FailToOpenThe("DEM File", demPath);
}

void StereoPair::FreeImages(bool left, bool right) {
  if (left && leftPhoto) leftPhoto->CloseImage();
  if (right && rightPhoto) rightPhoto->CloseImage();
}

void StereoPair::SetPhotos(AerialPhoto* left, AerialPhoto* right) {
  leftPhoto = Borrowed(left);
  rightPhoto = Borrowed(right);
  leftImage = nullptr;
  rightImage = nullptr;
}

void StereoPair::FreePair() {
  leftPhoto.reset();
  rightPhoto.reset();
  leftImage = nullptr;
  rightImage = nullptr;
  dem.reset();
}

int StereoPair::InitGeometry() {
  if (!leftPhoto || !rightPhoto) return -1;
  overlap = kOverlap;
  baseX = rightPhoto->perspectiveX - leftPhoto->perspectiveX;
  baseY = rightPhoto->perspectiveY - leftPhoto->perspectiveY;
  baseZ = rightPhoto->perspectiveZ - leftPhoto->perspectiveZ;
  meanGroundZ =
      leftPhoto->perspectiveZ - (std::sqrt(baseX * baseX + baseY * baseY) * leftPhoto->focalLength) /
                                    ((1.0 - overlap) * leftPhoto->frameWidth);
  leftImage = &leftPhoto->image;
  rightImage = &rightPhoto->image;
  return 1;
}

int StereoPair::InitGroundExtent() {
  const double base = std::sqrt(baseX * baseX + baseY * baseY);
  double extent[4] = {(0.5 - overlap) / (1.0 - overlap) * base, 0.5 / (1.0 - overlap) * base,
                      0.5 / (1.0 - overlap) * base, -0.5 / (1.0 - overlap) * base};
  RotateExtent(extent, Atan2(baseY, baseX));
  const double nX = std::trunc((extent[2] - extent[0]) / groundSpacingX);
  const double nY = std::trunc((extent[3] - extent[1]) / groundSpacingY);
  groundMinX = SnapToSpacing(extent[0] + leftPhoto->perspectiveX, groundSpacingX);
  groundMinY = SnapToSpacing(extent[1] + leftPhoto->perspectiveY, groundSpacingY);
  groundMaxX = nX * groundSpacingX + groundMinX;
  groundMaxY = nY * groundSpacingY + groundMinY;
  return 1;
}

int StereoPair::ExtentFromDem() {
  if (!dem || !dem->HasPixels()) return -1;
  const ErdasHeader& header = *dem->GetHeader();
  const double endX = header.cols * double{header.xCell} + header.xMap;
  const double endY = header.rows * double{header.yCell} + header.yMap;
  const double minX = std::floor(header.xMap / groundSpacingX) * groundSpacingX;
  const double maxX = std::ceil(endX / groundSpacingX) * groundSpacingX;
  const double minY = std::floor(std::fmin(endY, header.yMap) / groundSpacingY) * groundSpacingY;
  const double maxY = std::ceil(std::fmax(endY, header.yMap) / groundSpacingY) * groundSpacingY;
  if (!(minX < maxX && minY < maxY)) return -1;
  groundMinX = minX;
  groundMinY = minY;
  groundMaxX = maxX;
  groundMaxY = maxY;
  return 1;
}

int StereoPair::OpenPair() {
  matchPairs.clear();
  if (LoadPair() < 0) return kNotLoaded;
  inputNotes_ = NotesOn(*leftPhoto, leftOrientationPath, "left") +
                NotesOn(*rightPhoto, rightOrientationPath, "right") + (dem ? CutText(*dem, "The DEM") : "");
  if (InitGeometry() < 0) return kNoGeometry;
  return InitGroundExtent() < 0 ? kNoExtent : kDone;
}

void StereoPair::TellOutcome(const std::string& sentence) const {
  Ui().SetStatusText(0, sentence + inputNotes_);
}

LeftGrid StereoPair::GetLeftGrid() const {
  const auto [cols, rows] = leftImage->GetSize();
  const std::int32_t margin = rightPhoto->maxRowDisparity;
  LeftGrid grid;
  grid.stepCol = groundSpacingX / leftPhoto->pixelSizeX;
  grid.stepRow = groundSpacingY / leftPhoto->pixelSizeY;
  grid.halfW = targetWidth / 2;
  grid.halfH = targetHeight / 2;
  grid.margin = margin;
  grid.whyNone = WhyNoSteps(*this, grid);
  if (!grid.whyNone.empty()) return grid;
  const std::int64_t nCols = CountPlaces(static_cast<double>(cols) - targetWidth, grid.stepCol);
  const std::int64_t nRows =
      CountPlaces(static_cast<double>(rows) - targetHeight - 2.0 * margin, grid.stepRow);
  grid.whyNone = WhyNoPlaces(*this, nCols, nRows);
  if (!grid.whyNone.empty()) return grid;
  grid.nCols = nCols;
  grid.nRows = nRows;
  return grid;
}

void StereoPair::TellDone(std::int64_t nDone, std::int64_t nAll) const {
  if (!progressWindow || nAll <= 0) return;
  progressWindow->SetStatusText(0, "Done " + std::to_string(nDone * 100 / nAll) + "% ...");
}

}  // namespace corvane
