#include "io/StagedFiles.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <system_error>
#include <vector>

namespace corvane {

namespace {

namespace fs = std::filesystem;

// Writes out what the system still holds of the file.
bool MakeDurable(const fs::path& path) {
  const int descriptor = open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (descriptor < 0) return false;
  const bool good = fsync(descriptor) == 0;
  return close(descriptor) == 0 && good;
}

bool CanBeReplaced(const fs::path& path) {
  struct stat status = {};
  if (stat(path.c_str(), &status) != 0) return true;
  return !S_ISDIR(status.st_mode) && access(path.c_str(), W_OK) == 0;
}

}  // namespace

StagedFiles::StagedFiles(const std::string& target) {
  if (!fs::path(target).has_filename() || !CanBeReplaced(target)) return;
  std::error_code error;
  if (fs::exists(target, error) && !fs::is_regular_file(target, error)) {
    path_ = target;
    return;
  }
  fs::path resolved = fs::weakly_canonical(target, error);
  if (error) resolved = target;
  targetFolder_ = resolved.has_parent_path() ? resolved.parent_path().string() : ".";
  std::string folder = targetFolder_ + "/.corvane-XXXXXX";
  if (!mkdtemp(folder.data())) return;
  folder_ = folder;
  path_ = (fs::path(folder_) / resolved.filename()).string();
}

StagedFiles::~StagedFiles() {
  Discard();
}

bool StagedFiles::Commit() {
  const bool isDirect = IsOpen() && folder_.empty();
  const bool good = isDirect || (IsOpen() && MoveFiles());
  Discard();
  return good;
}

// All of them are looked at before the first is moved, so that one that can't be written stops them all.
bool StagedFiles::MoveFiles() {
  std::error_code error;
  std::vector<fs::path> files;
  for (const auto& entry : fs::directory_iterator(folder_, error)) files.push_back(entry.path());
  if (error || files.empty()) return false;
  for (const fs::path& file : files) {
    if (!CanBeReplaced(targetFolder_ / file.filename()) || !MakeDurable(file)) return false;
  }
  for (const fs::path& file : files) {
    fs::rename(file, targetFolder_ / file.filename(), error);
    if (error) return false;
  }
  return true;
}

void StagedFiles::Discard() {
  std::error_code ignored;
  if (!folder_.empty()) std::filesystem::remove_all(folder_, ignored);
  folder_.clear();
  path_.clear();
}

}  // namespace corvane
