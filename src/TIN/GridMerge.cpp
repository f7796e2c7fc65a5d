#include "TIN/GridMerge.h"

#include <algorithm>

#include "TIN/PointRecord.h"
#include "TIN/PointsHeader.h"
#include "io/InputFile.h"
#include "ui/FrontEnd.h"

namespace corvane {

namespace {

// The points that the file's size bears out.
std::int64_t PointsThere(InputFile& file, std::int32_t announced) {
  const std::int64_t nStored = file.BytesLeft().value_or(0) / static_cast<std::int64_t>(kPointBytes);
  return std::clamp<std::int64_t>(announced, 0, nStored);
}

}  // namespace

GridMerge::Added GridMerge::AddFile(const std::string& path) {
  InputFile file(path);
  const auto header = PointsHeader::Read(file);
  if (!header) return Added::Unreadable;
  if (!hasSpacing_) {
    hasSpacing_ = true;
    spacingX_ = header->spacingX;
    spacingY_ = header->spacingY;
  } else if (header->spacingX != spacingX_ || header->spacingY != spacingY_) {
    return Added::OtherSpacing;
  }

  if (!(header->maxX > header->minX && header->maxY > header->minY)) return Added::NoRectangle;
  const GroundRect rect = {header->minX, header->minY, header->maxX, header->maxY};
  if (paths_.empty()) rect_ = rect;
  rect_ = {std::min(rect_.minX, rect.minX), std::min(rect_.minY, rect.minY), std::max(rect_.maxX, rect.maxX),
           std::max(rect_.maxY, rect.maxY)};
  nPoints_ += PointsThere(file, header->nPoints);
  paths_.push_back(path);
  return Added::Yes;
}

int GridMerge::Write(const std::string& path) const {
  if (paths_.empty()) return -1;
  TINPoints grid(spacingX_, spacingY_, rect_, nPoints_);
  if (grid.cells.empty()) return -1;
  int nMerged = 0;
  for (const std::string& added : paths_) {
    if (grid.MergeFromFile(added) < 0) {
      Ui().SetStatusText(0, "Not merged: " + added);
      continue;
    }
    ++nMerged;
    const std::int32_t nMissing = grid.GetMissingCount();
    if (nMissing > 0) Ui().SetStatusText(0, std::to_string(nMissing) + " points are missing in " + added);
  }
  return grid.WriteGrid(path) < 0 ? -1 : nMerged;
}

}  // namespace corvane
