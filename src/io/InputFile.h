#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>

namespace corvane {

// A file opened for reading in binary mode. Only what can be read as a file opens: a folder does not. A pipe
// that nobody writes to reads as empty.
class InputFile {
 public:
  InputFile() = default;
  explicit InputFile(const std::string& path) { Open(path); }

  // False, too, for a path that holds a zero.
  bool Open(const std::string& path);
  bool IsOpen() const { return file_ != nullptr; }
  void Close() { file_.reset(); }

  // Reads up to `size` bytes into `to`; returns how many came: fewer at the end, or after a read error.
  std::size_t Read(void* to, std::size_t size);

  // Whether a read has failed; the end of the file is no failure.
  bool HasFailed() const { return file_ && std::ferror(file_.get()) != 0; }

  // Moves to `offset` bytes from the start; false if that is not possible.
  bool Seek(std::int64_t offset);

  // Bytes from the present position to the end; 0 behind the end. For a stream without a known size
  // (a pipe) nothing.
  std::optional<std::int64_t> BytesLeft();

 private:
  struct Closer {
    void operator()(std::FILE* file) const { std::fclose(file); }
  };
  std::unique_ptr<std::FILE, Closer> file_;
};

// The whole content of a file, or nothing if it does not open or read. Of a stream without a known size (a
// pipe, a device) 256 MB are the most that is taken: there is nothing of a longer one. Throws std::bad_alloc
// if the memory does not hold it.
std::optional<std::string> ReadWholeFile(const std::string& path);

}  // namespace corvane
