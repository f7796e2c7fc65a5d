#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>

#include "io/InputFile.h"
#include "io/OutputFile.h"
#include "io/Paths.h"
#include "support/TempFolder.h"

namespace corvane {
namespace {

namespace fs = std::filesystem;

std::size_t FilesIn(const std::string& folder) {
  return static_cast<std::size_t>(std::distance(fs::directory_iterator(folder), fs::directory_iterator()));
}

TEST(InputFile, AFolderDoesNotOpen) {
  const TempFolder folder;
  fs::create_directory("sub");
  EXPECT_FALSE(InputFile("sub").IsOpen());
  EXPECT_FALSE(InputFile("missing").IsOpen());
  EXPECT_FALSE(ReadWholeFile("sub"));
}

TEST(InputFile, APipeWithoutAWriterReadsAsEmpty) {
  const TempFolder folder;
  ASSERT_EQ(mkfifo("pipe", 0600), 0);
  EXPECT_EQ(ReadWholeFile("pipe"), "");
}

TEST(InputFile, AFailedReadIsNoEnd) {
  const TempFolder folder;
  InputFile file("/proc/self/mem");  // its first page can't be read
  ASSERT_TRUE(file.IsOpen());
  char byte = 0;
  EXPECT_EQ(file.Read(&byte, 1), 0u);
  EXPECT_TRUE(file.HasFailed());
  EXPECT_FALSE(ReadWholeFile("/proc/self/mem"));
}

TEST(InputFile, TellsTheBytesLeft) {
  const TempFolder folder;
  WriteFileBytes("x", "12345");
  InputFile file("x");
  EXPECT_EQ(file.BytesLeft(), 5);
  char bytes[2];
  EXPECT_EQ(file.Read(bytes, 2), 2u);
  EXPECT_EQ(file.BytesLeft(), 3);
  EXPECT_TRUE(file.Seek(9));
  EXPECT_EQ(file.BytesLeft(), 0);
  EXPECT_EQ(file.Read(bytes, 2), 0u);
}

TEST(InputFile, ReadsAWholeFile) {
  const TempFolder folder;
  const std::string content(3000001, 'a');
  WriteFileBytes("x y \xC3\xBC", content);
  EXPECT_EQ(ReadWholeFile("x y \xC3\xBC"), content);
}

// As the system's own files, whose size reads as 0.
TEST(InputFile, ReadsAFileWithoutASize) {
  const auto status = ReadWholeFile("/proc/self/status");
  ASSERT_TRUE(status);
  EXPECT_NE(status->find("VmPeak"), std::string::npos);
}

TEST(InputFile, ReadsAPipeToItsEnd) {
  const TempFolder folder;
  ASSERT_EQ(mkfifo("pipe", 0600), 0);
  const std::string content(3000001, 'a');
  const int held = open("pipe", O_RDWR | O_CLOEXEC);  // so that the reader finds a writer
  ASSERT_GE(held, 0);
  std::thread writer([&] {
    std::ofstream("pipe", std::ios::binary) << content;
    close(held);
  });
  const auto got = ReadWholeFile("pipe");
  writer.join();
  EXPECT_TRUE(got == content);
}

TEST(InputFile, GivesUpOnADeviceWithoutAnEnd) {
  EXPECT_FALSE(ReadWholeFile("/dev/zero"));
}

TEST(InputFile, APathWithAZeroIsNoOther) {
  const TempFolder folder;
  WriteFileBytes("x", "old");
  const std::string path("x\0zzz", 5);
  EXPECT_FALSE(InputFile(path).IsOpen());
  EXPECT_FALSE(ReadWholeFile(path));
  EXPECT_FALSE(FileExists(path));
  EXPECT_FALSE(OutputFile(path).IsOpen());
  EXPECT_FALSE(UpdateFileStart(path, "new", 3));
  EXPECT_EQ(ReadFileBytes("x"), "old");
  EXPECT_EQ(FilesIn("."), 1u);
}

TEST(OutputFile, AppearsOnlyWithCommit) {
  const TempFolder folder;
  OutputFile file("x.bin");
  ASSERT_TRUE(file.IsOpen());
  EXPECT_TRUE(file.Write("abc"));
  EXPECT_FALSE(fs::exists("x.bin"));
  EXPECT_TRUE(file.Commit());
  EXPECT_EQ(ReadFileBytes("x.bin"), "abc");
  EXPECT_EQ(FilesIn("."), 1u);
}

TEST(OutputFile, WithoutCommitTheOldFileStays) {
  const TempFolder folder;
  WriteFileBytes("x.bin", "old");
  {
    OutputFile file("x.bin");
    EXPECT_TRUE(file.Write(std::string(1000000, 'n')));
  }
  EXPECT_EQ(ReadFileBytes("x.bin"), "old");
  EXPECT_EQ(FilesIn("."), 1u);
}

TEST(OutputFile, WritesAWholeFile) {
  const TempFolder folder;
  EXPECT_TRUE(WriteWholeFile("a.txt", std::string("one\0two", 7)));
  EXPECT_EQ(ReadFileBytes("a.txt"), std::string("one\0two", 7));
  EXPECT_TRUE(WriteWholeFile("a.txt", ""));
  EXPECT_EQ(ReadFileBytes("a.txt"), "");
  EXPECT_FALSE(WriteWholeFile("nowhere/a.txt", "one"));
}

TEST(OutputFile, AFailedWriteLeavesTheOldFile) {
  const TempFolder folder;
  WriteFileBytes("x.bin", "old");
  const auto previous = std::signal(SIGXFSZ, SIG_IGN);
  rlimit limit{};
  getrlimit(RLIMIT_FSIZE, &limit);
  const rlimit small{65536, limit.rlim_max};
  setrlimit(RLIMIT_FSIZE, &small);  // as a full disk: writing beyond fails
  OutputFile file("x.bin");
  const bool written = file.Write(std::string(1000000, 'n'));
  const bool afterwards = file.Write("n");
  const bool committed = file.Commit();
  setrlimit(RLIMIT_FSIZE, &limit);
  std::signal(SIGXFSZ, previous);
  EXPECT_FALSE(written);
  EXPECT_FALSE(afterwards);
  EXPECT_FALSE(committed);
  EXPECT_EQ(ReadFileBytes("x.bin"), "old");
  EXPECT_EQ(FilesIn("."), 1u);
}

TEST(OutputFile, SeeksAndFillsWithZeros) {
  const TempFolder folder;
  OutputFile file("x.bin");
  EXPECT_TRUE(file.Seek(4));
  EXPECT_TRUE(file.Write("data"));
  EXPECT_TRUE(file.Seek(1));
  EXPECT_TRUE(file.Write("h"));
  EXPECT_TRUE(file.Commit());
  EXPECT_EQ(ReadFileBytes("x.bin"), std::string("\0h\0\0data", 8));
}

TEST(OutputFile, RefusesWhatCannotBeWritten) {
  const TempFolder folder;
  fs::create_directory("sub");
  EXPECT_FALSE(OutputFile("sub").IsOpen());
  EXPECT_FALSE(OutputFile("missing/x.bin").IsOpen());
  EXPECT_FALSE(OutputFile("").IsOpen());
  EXPECT_FALSE(OutputFile("sub/").IsOpen());
  EXPECT_EQ(FilesIn("sub"), 0u);
}

TEST(OutputFile, KeepsTheModeAndFollowsLinks) {
  const TempFolder folder;
  fs::create_directory("sub");
  WriteFileBytes("sub/x.bin", "old");
  chmod("sub/x.bin", 0640);
  fs::create_symlink("sub/x.bin", "link");
  OutputFile file("link");
  EXPECT_TRUE(file.Write("new"));
  EXPECT_TRUE(file.Commit());
  EXPECT_TRUE(fs::is_symlink("link"));
  EXPECT_EQ(ReadFileBytes("sub/x.bin"), "new");
  struct stat status = {};
  stat("sub/x.bin", &status);
  EXPECT_EQ(status.st_mode & 0777, 0640u);
}

TEST(OutputFile, WritesToADeviceDirectly) {
  OutputFile null("/dev/null");
  EXPECT_TRUE(null.Write("abc"));
  EXPECT_TRUE(null.Commit());
  OutputFile full("/dev/full");
  full.Write("abc");
  EXPECT_FALSE(full.Commit());
}

TEST(UpdateFileStart, ChangesOnlyTheStart) {
  const TempFolder folder;
  WriteFileBytes("x.bin", "old content");
  EXPECT_TRUE(UpdateFileStart("x.bin", "new", 3));
  EXPECT_EQ(ReadFileBytes("x.bin"), "new content");
  EXPECT_FALSE(UpdateFileStart("missing.bin", "new", 3));
  EXPECT_FALSE(fs::exists("missing.bin"));
}

}  // namespace
}  // namespace corvane
