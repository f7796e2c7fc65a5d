#include "FuzzFolder.h"

#include <stdlib.h>

#include <cstdio>
#include <filesystem>

namespace corvane {

namespace {

struct Folder {
  std::string path;

  Folder() {
    path = (std::filesystem::temp_directory_path() / "corvane-fuzz-XXXXXX").string();
    if (!mkdtemp(path.data())) abort();
  }
  ~Folder() {
    std::error_code ignored;
    std::filesystem::remove_all(path, ignored);
  }
};

}  // namespace

std::string FuzzPath(const std::string& name) {
  static const Folder folder;
  return folder.path + "/" + name;
}

std::string FuzzFile(const std::string& name, const std::uint8_t* data, std::size_t size) {
  const std::string path = FuzzPath(name);
  std::FILE* file = std::fopen(path.c_str(), "wb");
  if (!file || std::fwrite(data, 1, size, file) != size || std::fclose(file) != 0) abort();
  return path;
}

}  // namespace corvane
