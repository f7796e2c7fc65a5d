#include "TIN/GridMerge.h"

#include <algorithm>

#include "TIN/GridFailure.h"
#include "TIN/PointRecord.h"
#include "TIN/PointsHeader.h"
#include "io/InputFile.h"
#include "io/OutputFile.h"
#include "io/Paths.h"
#include "ui/FrontEnd.h"

namespace corvane {

namespace {

constexpr const char* kNoFile = "No file could be merged.";

// Why a file is not merged, by GridMerge::Added.
constexpr const char* kReasons[] = {"", "does not open", "no whole header", "other cell size",
                                    "no area in its header"};

// The points that the file's size bears out.
std::int64_t PointsThere(InputFile& file, std::int32_t announced) {
  const std::int64_t nStored = file.BytesLeft().value_or(0) / static_cast<std::int64_t>(kPointBytes);
  return std::clamp<std::int64_t>(announced, 0, nStored);
}

std::string Noted(const std::string& path, const std::string& note) {
  return FileName(path) + " (" + note + ")";
}

// " Title: a, b, c and 4 more.", or nothing without items. A status bar does not hold many.
std::string ListText(const std::string& title, const std::vector<std::string>& items) {
  constexpr std::size_t kMaxShown = 3;
  if (items.empty()) return "";
  std::string text = " " + title + ": " + items[0];
  for (std::size_t i = 1; i < std::min(items.size(), kMaxShown); ++i) text += ", " + items[i];
  if (items.size() > kMaxShown) text += " and " + std::to_string(items.size() - kMaxShown) + " more";
  return text + ".";
}

}  // namespace

GridMerge::Added GridMerge::AddFile(const std::string& path) {
  ++nAdded_;
  const Added added = TakeUp(path);
  if (added != Added::Yes) notMerged_.push_back(Noted(path, kReasons[static_cast<std::size_t>(added)]));
  return added;
}

GridMerge::Added GridMerge::TakeUp(const std::string& path) {
  InputFile file(path);
  if (!file.IsOpen()) return Added::NotOpened;
  const auto header = PointsHeader::Read(file);
  if (!header) return Added::NoHeader;
  if (!hasSpacing_) {
    hasSpacing_ = true;
    spacingX_ = header->spacingX;
    spacingY_ = header->spacingY;
  } else if (header->spacingX != spacingX_ || header->spacingY != spacingY_) {
    return Added::OtherSpacing;
  }

  if (!(header->maxX > header->minX && header->maxY > header->minY)) return Added::NoRectangle;
  const GroundRect rect = {header->minX, header->minY, header->maxX, header->maxY};
  if (files_.empty()) rect_ = rect;
  rect_ = {std::min(rect_.minX, rect.minX), std::min(rect_.minY, rect.minY), std::max(rect_.maxX, rect.maxX),
           std::max(rect_.maxY, rect.maxY)};
  files_.push_back({path, PointsThere(file, header->nPoints)});
  return Added::Yes;
}

int GridMerge::Write(const std::string& path) {
  OutputFile file(path);
  if (!file.IsOpen()) return -2;
  if (files_.empty()) return FailWith(kNoFile);
  std::int64_t nPoints = 0;
  for (const File& added : files_) nPoints += added.nPoints;
  TINPoints grid(spacingX_, spacingY_, rect_, nPoints);
  if (grid.cells.empty()) return FailWith(TINPoints::WhyNoGrid(spacingX_, spacingY_, rect_, nPoints));
  MergeAll(grid);
  return nMerged_ > 0 ? WriteFile(file, grid) : FailWith(kNoFile);
}

void GridMerge::MergeAll(TINPoints& grid) {
  int nTried = 0;
  for (const File& added : files_) {
    Ui().SetStatusText(0, "Merging " + std::to_string(++nTried) + " of " + std::to_string(files_.size()) +
                              ": " + added.path);
    if (grid.MergeFromFile(added.path) < 0) {
      notMerged_.push_back(Noted(added.path, "no points that can be read"));
      continue;
    }
    ++nMerged_;
    nRead_ += added.nPoints;
    const std::int32_t nMissing = grid.GetMissingCount();
    if (nMissing > 0) cutShort_.push_back(Noted(added.path, "points missing: " + std::to_string(nMissing)));
  }
}

int GridMerge::WriteFile(OutputFile& file, TINPoints& grid) {
  std::int32_t nWritten = -1;
  const int result = grid.WriteGrid(file, &nWritten);
  if (nWritten == 0) return FailWith(kNoPointInGrid);
  if (result < 0 || !file.Commit()) return -3;
  nWritten_ = nWritten;
  return nMerged_;
}

int GridMerge::FailWith(const std::string& reason) {
  failure_ = reason;
  return -1;
}

std::string GridMerge::GetReport() const {
  std::string text;
  if (nWritten_ > 0) {
    text = " Points written: " + std::to_string(nWritten_) + " of " + std::to_string(nRead_) +
           ". Files merged: " + std::to_string(nMerged_) + " of " + std::to_string(nAdded_) + ".";
  }
  text += ListText("Not merged", notMerged_) + ListText("Cut short", cutShort_);
  return text.empty() ? text : text.substr(1);
}

}  // namespace corvane
