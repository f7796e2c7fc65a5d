#pragma once

#include <cstdint>
#include <string>

#include "io/NumberText.h"
#include "io/OutputFile.h"
#include "ui/ErrorTexts.h"
#include "ui/FrontEnd.h"

namespace corvane {

// A text file with a line "index, ..." for each point, the index counting from 0; written whole or not at
// all.
class PointListFile {
 public:
  explicit PointListFile(const std::string& path) : path_(path), file_(path) {}

  // Writes a line; `append` puts what follows the index to the end of a text. Only Commit tells of failures.
  template <typename Append>
  void Add(Append append) {
    line_.clear();
    AppendInt(line_, count_++);
    append(line_ += ", ");
    file_.Write(line_ += '\n');
  }

  std::int64_t GetCount() const { return count_; }

  // 1; -1 if the file does not open, after the composed open text; -3 if it can't be written, after the
  // composed write text, both with the warning icon.
  int Commit() {
    const bool isOpen = file_.IsOpen();
    if (isOpen && file_.Commit()) return 1;
    ShowWarning(isOpen ? WriteErrorText(path_) : OpenErrorText(path_));
    return isOpen ? -3 : -1;
  }

 private:
  std::string path_;
  OutputFile file_;
  std::string line_;
  std::int64_t count_ = 0;
};

}  // namespace corvane
