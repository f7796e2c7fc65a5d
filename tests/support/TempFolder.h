#pragma once

#include <string>

namespace corvane {

// A new empty folder, the current one for the lifetime of the object, removed at the end.
class TempFolder {
 public:
  TempFolder();
  ~TempFolder();
  TempFolder(const TempFolder&) = delete;
  TempFolder& operator=(const TempFolder&) = delete;

  const std::string& GetPath() const { return path_; }

 private:
  std::string path_;
  std::string previous_;
};

std::string ReadFileBytes(const std::string& path);  // "" if there is none
void WriteFileBytes(const std::string& path, const std::string& bytes);

}  // namespace corvane
