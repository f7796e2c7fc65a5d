// Matching at the feature pixels of a zero-crossing image.

#include <algorithm>

#include "StereoPair/GridMatching.h"
#include "StereoPair/StereoPair.h"
#include "erdasimg/ErdasHeader.h"
#include "erdasimg/PackType.h"
#include "io/InputFile.h"
#include "io/Paths.h"
#include "ui/FrontEnd.h"

namespace corvane {

namespace {

constexpr const char* kFeatureSuffix = "_0X.lan";
constexpr std::int64_t kRowStep = 10;

// The rows of the left image whose features are matched: `first`, first + kRowStep, and so on, below `end`.
struct FeatureRows {
  std::int64_t first;
  std::int64_t end;

  std::int64_t GetCount() const { return first < end ? (end - first - 1) / kRowStep + 1 : 0; }
  std::int64_t GetLast() const { return first + (GetCount() - 1) * kRowStep; }
};

// From 1 % to 99 % of the height.
// Kept: the end is held by a number of columns, that of the right image.
FeatureRows RowsOf(const StereoPair& pair) {
  const double height = pair.leftImage->GetSize().cy;
  const std::int64_t margin = pair.rightPhoto->maxRowDisparity;
  return {std::max(static_cast<std::int64_t>(height * 1.0 / 100), margin),
          std::min(static_cast<std::int64_t>(height * 0.99), pair.rightImage->GetSize().cx - margin)};
}

// The bytes of a row of a feature image as wide as `pixels`; those that the file lacks are 0.
void ReadRow(InputFile& file, std::int64_t row, std::vector<std::uint8_t>& pixels) {
  const auto nCols = static_cast<std::int64_t>(pixels.size());
  std::size_t nRead = 0;
  if (file.Seek(static_cast<std::int64_t>(sizeof(ErdasHeader)) + row * nCols)) {
    nRead = file.Read(pixels.data(), pixels.size());
  }
  std::fill(pixels.begin() + static_cast<std::ptrdiff_t>(nRead), pixels.end(), std::uint8_t{0});
}

// What the person should know of a feature file: that it is no byte image of the left image's size.
std::string NoteOn(InputFile& file, const std::string& path, const ErdasImg& leftImage) {
  ErdasHeader header;
  const bool isWhole = file.Read(&header, sizeof header) == sizeof header;
  const bool fits = isWhole && BytesOfPackType(header.packType) == 1 &&
                    ImageSize{header.cols, header.rows} == leftImage.GetSize();
  return fits ? "" : " " + FileName(path) + " is no image of bytes of the left image's size.";
}

// Kept: only the start is cut to the right image.
bool MatchFeature(PlaceMatcher& matcher, std::int32_t col, std::int32_t row) {
  const StereoPair& pair = matcher.GetPair();
  const std::int64_t nCols = pair.rightImage->GetSize().cx;
  const std::int64_t halfW = pair.targetWidth / 2;
  const ColumnRange range(pair, col);
  if (range.IsBeside(nCols)) {
    matcher.Skip();
    return true;
  }
  const std::int64_t start = std::min(std::max(range.start, halfW), nCols - halfW);
  return matcher.Match(col, row, start, range.first, range.last);
}

// False without memory.
bool MatchFeatures(PlaceMatcher& matcher, InputFile& file) {
  const StereoPair& pair = matcher.GetPair();
  const FeatureRows rows = RowsOf(pair);
  std::vector<std::uint8_t> pixels(static_cast<std::size_t>(pair.leftImage->GetSize().cx));
  for (std::int64_t row = rows.first; row < rows.end; row += kRowStep) {
    pair.TellDone((row - rows.first) / kRowStep, rows.GetCount());
    ReadRow(file, row, pixels);
    for (std::size_t col = 0; col < pixels.size(); ++col) {
      if (pixels[col] == 0) continue;
      if (!MatchFeature(matcher, static_cast<std::int32_t>(col), static_cast<std::int32_t>(row)))
        return false;
    }
  }
  return true;
}

// Why there is nothing to match if the rows are empty: "... in the rows 1, 11, ..., 341."
std::string WhyNoFeatures(const FeatureRows& rows) {
  const std::string first = std::to_string(rows.first);
  const std::int64_t nRows = rows.GetCount();
  if (nRows == 0) {
    return "There is no row to match: they begin at " + first + ", and end before " +
           std::to_string(rows.end) + ".";
  }
  if (nRows == 1) return "There is no feature in the row " + first + ".";
  return "There is no feature in the rows " + first + ", " +
         (nRows > 2 ? std::to_string(rows.first + kRowStep) + ", " : "") + (nRows > 3 ? "..., " : "") +
         std::to_string(rows.GetLast()) + ".";
}

int FailToOpenFeatures(const std::string& path) {
  Ui().SetStatusText(0, path + " does not open. Image > Zero Crossing writes it.");
  ShowMessage("Open file Zero-crossing file(s) error!");
  return StereoPair::kNoInput;
}

// The method on a pair that is open.
int MatchFeatureFile(StereoPair& pair) {
  const std::string path = pair.GetLeftName(kFeatureSuffix);
  if (IsOneOfFiles(path, {StereoPair::kGroundLog, pair.matchPointsPath})) return RefuseToReplace(path);
  pair.leftFeatureFile = std::make_unique<InputFile>(path);
  if (!pair.leftFeatureFile->IsOpen()) return FailToOpenFeatures(path);
  const std::string note = NoteOn(*pair.leftFeatureFile, path, *pair.leftImage);
  AskColumnOffset(pair);
  PlaceMatcher matcher(pair, SearchOfCorrelation(pair), {});
  if (!MatchFeatures(matcher, *pair.leftFeatureFile)) return FailForMemory();
  return FinishGridMethod(pair, matcher, false, WhyNoFeatures(RowsOf(pair)), note);
}

}  // namespace

int StereoPair::MatchAreaFeatureCC() {
  maxDisparity = kGridDisparity;  // Kept: the threshold is that of the command before
  if (RunMatchDialog() < 0) return kCancelled;
  const int status = RunOnPair(*this, {}, [this] { return MatchFeatureFile(*this); });
  leftFeatureFile.reset();
  return status;
}

}  // namespace corvane
