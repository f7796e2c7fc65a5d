#pragma once

#include <string>
#include <vector>

namespace corvane {

// The recent-file list: at most 6 absolute paths, the latest first. It is the only thing that lasts from one
// run to the next.
class RecentFileList {
 public:
  static constexpr std::size_t kMaxFiles = 6;

  // `profilePath` is the file that keeps the list; with "" the list lives as long as the object.
  explicit RecentFileList(std::string profilePath);

  // Puts the path at the top, whether it stood in the list before or not, and writes the list.
  void Add(const std::string& path);
  const std::vector<std::string>& GetPaths() const { return paths_; }

 private:
  void Load();
  void Save() const;

  std::string profilePath_;
  std::vector<std::string> paths_;
};

// The file that keeps the list for the person who runs the program:
// <config folder>/Local AppWizard-Generated Applications/Corvane/recent-files.txt, the config folder being
// $XDG_CONFIG_HOME or ~/.config.
std::string UserProfilePath();

}  // namespace corvane
