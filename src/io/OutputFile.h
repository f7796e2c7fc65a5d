#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace corvane {

// An output file that appears whole or not at all. Bytes go to a file beside the target, which has no name
// until Commit() moves it onto the target in one step, so that nothing stays behind even if the program is
// ended. (Where the system knows no nameless files it has a hidden name.) Without a successful Commit() the
// target keeps its old content. A target that is no regular file (a device, a pipe) is written directly.
class OutputFile {
 public:
  OutputFile() = default;
  explicit OutputFile(const std::string& path) { Open(path); }
  ~OutputFile();
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;

  // False if the target can't be written: no such folder, no permission, a folder in its place, a path that
  // holds a zero.
  bool Open(const std::string& path);
  bool IsOpen() const { return descriptor_ >= 0; }

  // Appends at the present position. False once any write has failed; the failure also stays for Commit().
  bool Write(const void* from, std::size_t size);
  bool Write(std::string_view text) { return Write(text.data(), text.size()); }

  // Moves to `offset` bytes from the start; bytes skipped over read as zero.
  bool Seek(std::int64_t offset);

  // Writes out what is buffered, makes it durable and puts the file in the target's place.
  // False if any write before, or this step, failed: the target then is as it was.
  bool Commit();

  // Drops what was written; the target stays as it was.
  void Discard();

  const std::string& GetPath() const { return path_; }

 private:
  bool OpenBeside(unsigned mode);
  bool MoveOntoTarget();
  bool Flush();
  bool WriteOut(const char* from, std::size_t size);

  std::string path_;           // as given
  std::string target_;         // behind symbolic links
  std::string temporaryPath_;  // of the file beside the target, while it has a name
  bool isDirect_ = false;      // written straight to the target
  int descriptor_ = -1;
  bool failed_ = false;
  std::vector<char> buffer_;
};

// Writes a file of this content, whole or not at all. False if that fails.
bool WriteWholeFile(const std::string& path, std::string_view content);

// Overwrites `size` bytes at the start of an existing file with one write. False if that fails.
bool UpdateFileStart(const std::string& path, const void* from, std::size_t size);

}  // namespace corvane
