#pragma once

#include <algorithm>
#include <cstdio>
#include <string>

#include "io/Paths.h"

namespace corvane {

// A file that is removed with this object, if it could be made.
class ScratchFile {
 public:
  explicit ScratchFile(const std::string& path) : path_(path), file_(std::fopen(path.c_str(), "wb")) {}
  ~ScratchFile() {
    if (!isOurs_) return;
    Close();
    std::remove(path_.c_str());
  }
  ScratchFile(const ScratchFile&) = delete;
  ScratchFile& operator=(const ScratchFile&) = delete;

  const std::string& GetPath() const { return path_; }
  bool IsOpen() const { return file_ != nullptr; }
  bool Write(const void* bytes, std::size_t size) { return std::fwrite(bytes, 1, size, file_) == size; }

  // False if not all that was written has got there.
  bool Close() {
    const bool good = file_ && std::fclose(file_) == 0;
    file_ = nullptr;
    return good;
  }

 private:
  std::string path_;
  std::FILE* file_;
  bool isOurs_ = file_ != nullptr;
};

// "a/x.lan" with "_temp" gives "a/x_temp.lan": the extension is taken to have four characters, its "." among
// them.
inline std::string NameBeforeExtension(const std::string& path, const std::string& suffix) {
  std::string name = path;
  return name.insert(name.size() - std::min<std::size_t>(4, FileName(path).size()), suffix);
}

}  // namespace corvane
