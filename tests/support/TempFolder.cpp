#include "support/TempFolder.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace corvane {

namespace fs = std::filesystem;

TempFolder::TempFolder() : previous_(fs::current_path().string()) {
  std::string pattern = (fs::temp_directory_path() / "corvane-test-XXXXXX").string();
  path_ = mkdtemp(pattern.data());
  fs::current_path(path_);
}

TempFolder::~TempFolder() {
  std::error_code ignored;
  fs::current_path(previous_, ignored);
  fs::remove_all(path_, ignored);
}

std::string ReadFileBytes(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

void WriteFileBytes(const std::string& path, const std::string& bytes) {
  std::ofstream(path, std::ios::binary) << bytes;
}

}  // namespace corvane
