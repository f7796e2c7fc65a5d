#pragma once

#include <initializer_list>
#include <string>
#include <vector>

namespace corvane {

// Files that a library writes by name, which appear whole or not at all. They are written into a hidden
// folder beside the target, under their own names, and Commit() moves them to their places. Without a
// successful Commit() nothing of them is left, and the targets keep their old content. (A program that is
// ended in between leaves the folder behind.) A target that is no regular file (a device, a pipe) is written
// directly.
//
//   StagedFiles stage("out/net.shp");
//   SHPHandle shapes = SHPCreate(stage.GetPath().c_str(), ...);  // also writes net.shx there
//   SHPClose(shapes);
//   if (!stage.Commit()) ...
class StagedFiles {
 public:
  explicit StagedFiles(const std::string& target);
  ~StagedFiles();
  StagedFiles(const StagedFiles&) = delete;
  StagedFiles& operator=(const StagedFiles&) = delete;

  // False if the target can't be written: no such folder, no permission, a folder in its place.
  bool IsOpen() const { return !path_.empty(); }

  // Whether the target is written directly.
  bool IsDirect() const { return IsOpen() && folder_.empty(); }

  // Where to write what shall become the target; "" if it is not open.
  const std::string& GetPath() const { return path_; }

  // The files that have been written so far, of whatever name.
  std::vector<std::string> GetFiles() const;

  // Makes the files durable and moves each into the place of its name, with the permissions of the file that
  // was there. They must be closed. False if that fails, or there is none.
  bool Commit() { return CommitTogether({this}); }

  // Commits several; all of their files are looked at before the first is moved, so that one that can't be
  // written stops them all.
  static bool CommitTogether(std::initializer_list<StagedFiles*> stages);

  void Discard();

 private:
  std::string TargetOf(const std::string& file) const;
  bool CanMove() const;
  bool Move() const;

  std::string targetFolder_;
  std::string folder_;  // the hidden one; "" if the target is written directly
  std::string path_;
};

}  // namespace corvane
