#include "io/StagedFiles.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <vector>

#include "support/TempFolder.h"

namespace corvane {
namespace {

std::vector<std::string> FilesHere() {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(".")) names.push_back(entry.path().filename());
  std::sort(names.begin(), names.end());
  return names;
}

TEST(StagedFiles, BringAllFilesToTheirPlaces) {
  const TempFolder folder;
  StagedFiles stage("net.shp");
  ASSERT_TRUE(stage.IsOpen());
  WriteFileBytes(stage.GetPath(), "shapes");
  WriteFileBytes(std::filesystem::path(stage.GetPath()).parent_path() / "net.shx", "index");
  EXPECT_FALSE(std::filesystem::exists("net.shp"));
  EXPECT_TRUE(stage.Commit());
  EXPECT_EQ(FilesHere(), (std::vector<std::string>{"net.shp", "net.shx"}));
  EXPECT_EQ(ReadFileBytes("net.shp"), "shapes");
}

TEST(StagedFiles, LeaveNothingWithoutCommit) {
  const TempFolder folder;
  WriteFileBytes("net.shp", "old");
  {
    StagedFiles stage("net.shp");
    WriteFileBytes(stage.GetPath(), "new");
  }
  EXPECT_EQ(FilesHere(), std::vector<std::string>{"net.shp"});
  EXPECT_EQ(ReadFileBytes("net.shp"), "old");
}

TEST(StagedFiles, MoveNoneIfOneCannotBeMoved) {
  const TempFolder folder;
  std::filesystem::create_directory("net.shx");
  StagedFiles stage("net.shp");
  WriteFileBytes(stage.GetPath(), "shapes");
  WriteFileBytes(std::filesystem::path(stage.GetPath()).parent_path() / "net.shx", "index");
  EXPECT_FALSE(stage.Commit());
  EXPECT_EQ(FilesHere(), std::vector<std::string>{"net.shx"});
}

TEST(StagedFiles, DoNotOpenWhereNothingCanBeWritten) {
  const TempFolder folder;
  std::filesystem::create_directory("net.shp");
  EXPECT_FALSE(StagedFiles("net.shp").IsOpen());
  EXPECT_FALSE(StagedFiles("missing/net.shp").IsOpen());
  EXPECT_FALSE(StagedFiles("").IsOpen());
}

TEST(StagedFiles, FollowLinks) {
  const TempFolder folder;
  std::filesystem::create_directory("real");
  WriteFileBytes("real/a.tif", "old");
  std::filesystem::create_symlink("real/a.tif", "link.tif");
  StagedFiles stage("link.tif");
  WriteFileBytes(stage.GetPath(), "new");
  EXPECT_TRUE(stage.Commit());
  EXPECT_TRUE(std::filesystem::is_symlink("link.tif"));
  EXPECT_EQ(ReadFileBytes("real/a.tif"), "new");
}

TEST(StagedFiles, FollowLinksToWhatIsNotThereYet) {
  const TempFolder folder;
  std::filesystem::create_directory("real");
  std::filesystem::create_symlink("real/a.tif", "link.tif");
  StagedFiles stage("link.tif");
  WriteFileBytes(stage.GetPath(), "new");
  EXPECT_TRUE(stage.Commit());
  EXPECT_TRUE(std::filesystem::is_symlink("link.tif"));
  EXPECT_EQ(ReadFileBytes("real/a.tif"), "new");
}

TEST(StagedFiles, KeepThePermissionsOfWhatTheyReplace) {
  const TempFolder folder;
  WriteFileBytes("a.tif", "old");
  const auto owner = std::filesystem::perms::owner_read | std::filesystem::perms::owner_write;
  std::filesystem::permissions("a.tif", owner);
  StagedFiles stage("a.tif");
  WriteFileBytes(stage.GetPath(), "new");
  EXPECT_TRUE(stage.Commit());
  EXPECT_EQ(std::filesystem::status("a.tif").permissions(), owner);
}

TEST(StagedFiles, CommitTogetherMovesAllOrNone) {
  const TempFolder folder;
  std::filesystem::create_directory("b.shp");
  StagedFiles table("a.dbf");
  StagedFiles shapes("a.shp");
  WriteFileBytes(table.GetPath(), "table");
  WriteFileBytes(shapes.GetPath(), "shapes");
  WriteFileBytes(std::filesystem::path(shapes.GetPath()).parent_path() / "b.shp", "in the way");
  EXPECT_FALSE(StagedFiles::CommitTogether({&table, &shapes}));
  EXPECT_EQ(FilesHere(), std::vector<std::string>{"b.shp"});
}

TEST(StagedFiles, FailWithoutFiles) {
  const TempFolder folder;
  StagedFiles stage("net.shp");
  EXPECT_FALSE(stage.Commit());
}

TEST(StagedFiles, WriteDevicesDirectly) {
  StagedFiles stage("/dev/null");
  EXPECT_EQ(stage.GetPath(), "/dev/null");
  EXPECT_TRUE(stage.Commit());
}

}  // namespace
}  // namespace corvane
