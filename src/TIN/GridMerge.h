#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "TIN/TINPoints.h"

namespace corvane {

// Merges points files of one spacing into one grid over all of them. Where files overlap, the point with the
// highest value stays.
//
// Add the files, then write, once. Only their headers stay in memory, and the grid while it is written.
class GridMerge {
 public:
  enum class Added {
    Yes,
    NotOpened,
    NoHeader,      // of its whole length
    OtherSpacing,  // than the first file that could be read
    NoRectangle,   // its header's extents hold no area
  };

  Added AddFile(const std::string& path);

  // Merges the files that were added and writes the grid. Tells in status pane 0 how far it is. Returns the
  // number of files merged; -1: there is nothing to write, for the reason that GetFailure() gives; -2: the
  // output does not open; -3: it can't be written. It then is as it was.
  int Write(const std::string& path);

  // After Write: why there is nothing to write, as a sentence. Empty if there is.
  const std::string& GetFailure() const { return failure_; }

  // After Write: how many points were written and files merged, and which files were not, or are cut short.
  // Before it, and if nothing was written, only the latter.
  std::string GetReport() const;

 private:
  struct File {
    std::string path;
    std::int64_t nPoints = 0;  // that are there
  };

  Added TakeUp(const std::string& path);
  void MergeAll(TINPoints& grid);
  int WriteFile(OutputFile& file, TINPoints& grid);
  int FailWith(const std::string& reason);

  std::vector<File> files_;
  bool hasSpacing_ = false;
  double spacingX_ = 0.0;  // of the first file, and so of all
  double spacingY_ = 0.0;
  GroundRect rect_;  // that holds all files
  std::size_t nAdded_ = 0;
  int nMerged_ = 0;
  std::int64_t nRead_ = 0;              // points of the merged files
  std::int32_t nWritten_ = 0;           // points
  std::vector<std::string> notMerged_;  // names, with the reasons
  std::vector<std::string> cutShort_;   // names, with what is missing
  std::string failure_;
};

}  // namespace corvane
