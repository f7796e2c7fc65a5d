#include "io/StagedFiles.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <system_error>

#include "io/Target.h"

namespace corvane {

namespace {

namespace fs = std::filesystem;

// Writes out what the system still holds of the file.
bool MakeDurable(const std::string& path) {
  const int descriptor = open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (descriptor < 0) return false;
  const bool good = fsync(descriptor) == 0;
  return close(descriptor) == 0 && good;
}

bool CanBeReplaced(const std::string& path) {
  struct stat status = {};
  if (stat(path.c_str(), &status) != 0) return true;
  return !S_ISDIR(status.st_mode) && access(path.c_str(), W_OK) == 0;
}

// Gives `file` the permissions of the one that it replaces.
void TakePermissions(const std::string& file, const std::string& replaced) {
  struct stat status = {};
  if (stat(replaced.c_str(), &status) == 0) chmod(file.c_str(), status.st_mode & 07777);
}

}  // namespace

StagedFiles::StagedFiles(const std::string& target) {
  const std::string resolved = ResolvedTarget(target);
  if (!fs::path(target).has_filename() || !CanBeReplaced(resolved)) return;
  std::error_code error;
  if (fs::exists(resolved, error) && !fs::is_regular_file(resolved, error)) {
    path_ = target;
    return;
  }
  targetFolder_ = FolderOf(resolved);
  std::string folder = targetFolder_ + "/.corvane-XXXXXX";
  if (!mkdtemp(folder.data())) return;
  folder_ = folder;
  path_ = (fs::path(folder_) / fs::path(resolved).filename()).string();
}

StagedFiles::~StagedFiles() {
  Discard();
}

std::vector<std::string> StagedFiles::GetFiles() const {
  std::vector<std::string> files;
  if (IsDirect()) files.push_back(path_);
  std::error_code error;
  for (const auto& entry : fs::directory_iterator(folder_, error)) files.push_back(entry.path().string());
  std::sort(files.begin(), files.end());
  return files;
}

bool StagedFiles::CommitTogether(std::initializer_list<StagedFiles*> stages) {
  const auto canMove = [](const StagedFiles* stage) { return stage->CanMove(); };
  const auto move = [](const StagedFiles* stage) { return stage->Move(); };
  const bool good =
      std::all_of(stages.begin(), stages.end(), canMove) && std::all_of(stages.begin(), stages.end(), move);
  for (StagedFiles* const stage : stages) stage->Discard();
  return good;
}

std::string StagedFiles::TargetOf(const std::string& file) const {
  return (fs::path(targetFolder_) / fs::path(file).filename()).string();
}

bool StagedFiles::CanMove() const {
  if (IsDirect()) return true;
  const std::vector<std::string> files = GetFiles();
  return !files.empty() && std::all_of(files.begin(), files.end(), [this](const std::string& file) {
    return CanBeReplaced(TargetOf(file)) && MakeDurable(file);
  });
}

bool StagedFiles::Move() const {
  if (IsDirect()) return true;
  for (const std::string& file : GetFiles()) {
    TakePermissions(file, TargetOf(file));
    if (rename(file.c_str(), TargetOf(file).c_str()) != 0) return false;
  }
  return true;
}

void StagedFiles::Discard() {
  std::error_code ignored;
  if (!folder_.empty()) fs::remove_all(folder_, ignored);
  folder_.clear();
  path_.clear();
}

}  // namespace corvane
