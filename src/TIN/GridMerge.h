#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "TIN/TINPoints.h"

namespace corvane {

// Merges points files of one spacing into one grid over all of them. Where files overlap, the point with the
// highest value stays.
//
// Add the files, then write. Only their headers stay in memory, and the grid while it is written.
class GridMerge {
 public:
  enum class Added {
    Yes,
    Unreadable,    // does not open, or has no whole header
    OtherSpacing,  // than the first file that could be read
    NoRectangle,   // its header's extents hold no area
  };

  Added AddFile(const std::string& path);

  // Merges the files that were added and writes the grid. Tells in status pane 0 which could not be merged or
  // are cut short. Returns the number of files merged; -1: no file was added, their common grid is no grid or
  // too large (see TINPoints), no point lies in it, or the output can't be written, which then is as it was.
  int Write(const std::string& path) const;

 private:
  std::vector<std::string> paths_;
  bool hasSpacing_ = false;
  double spacingX_ = 0.0;  // of the first file, and so of all
  double spacingY_ = 0.0;
  GroundRect rect_;           // that holds all files
  std::int64_t nPoints_ = 0;  // in them
};

}  // namespace corvane
