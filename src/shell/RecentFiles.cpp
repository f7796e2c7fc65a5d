#include "shell/RecentFiles.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>

#include "io/InputFile.h"
#include "io/OutputFile.h"

namespace corvane {

RecentFileList::RecentFileList(std::string profilePath) : profilePath_(std::move(profilePath)) {
  Load();
}

void RecentFileList::Add(const std::string& path) {
  if (path.find('\n') != std::string::npos) return;  // a line of the file can't hold it
  Load();                                            // what another window has added meanwhile
  std::erase(paths_, path);
  paths_.insert(paths_.begin(), path);
  if (paths_.size() > kMaxFiles) paths_.resize(kMaxFiles);
  Save();
}

void RecentFileList::Load() {
  if (profilePath_.empty()) return;
  paths_.clear();
  const std::string content = ReadWholeFile(profilePath_).value_or("");
  std::size_t start = 0;
  while (start < content.size() && paths_.size() < kMaxFiles) {
    const std::size_t end = std::min(content.find('\n', start), content.size());
    if (end > start) paths_.push_back(content.substr(start, end - start));
    start = end + 1;
  }
}

void RecentFileList::Save() const {
  if (profilePath_.empty()) return;
  std::error_code ignored;
  std::filesystem::create_directories(std::filesystem::path(profilePath_).parent_path(), ignored);
  OutputFile file(profilePath_);
  for (const std::string& path : paths_) file.Write(path + "\n");
  file.Commit();
}

std::string UserProfilePath() {
  const char* configured = std::getenv("XDG_CONFIG_HOME");
  const char* home = std::getenv("HOME");
  std::filesystem::path folder;
  if (configured && *configured) {
    folder = configured;
  } else if (home && *home) {
    folder = std::filesystem::path(home) / ".config";
  } else {
    return "";
  }
  return (folder / "Local AppWizard-Generated Applications" / "Corvane" / "recent-files.txt").string();
}

}  // namespace corvane
