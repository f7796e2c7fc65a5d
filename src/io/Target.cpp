#include "io/Target.h"

#include <filesystem>
#include <system_error>

namespace corvane {

namespace {

namespace fs = std::filesystem;

constexpr int kMaxLinks = 40;  // as the system's own limit

}  // namespace

std::string ResolvedTarget(const std::string& path) {
  std::error_code error;
  fs::path target = path;
  for (int i = 0; i < kMaxLinks && fs::is_symlink(target, error); ++i) {
    const fs::path link = fs::read_symlink(target, error);
    if (error) return path;
    target = target.parent_path() / link;  // an absolute link stands for itself
  }
  const fs::path resolved = fs::weakly_canonical(target, error);
  return error ? path : resolved.string();
}

std::string FolderOf(const std::string& path) {
  const std::string folder = fs::path(path).parent_path().string();
  return folder.empty() ? "." : folder;
}

}  // namespace corvane
