#include "io/InputFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "io/Paths.h"

namespace corvane {

namespace {

constexpr std::size_t kMegabyte = std::size_t{1} << 20;

// A stream whose size is not known is read up to here: a device may have no end.
constexpr std::size_t kLongestStream = 256 * kMegabyte;

}  // namespace

bool InputFile::Open(const std::string& path) {
  file_.reset();
  if (HoldsZero(path)) return false;
  const int descriptor = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);  // never waits for a writer
  if (descriptor < 0) return false;
  struct stat status = {};
  const bool isFile = fstat(descriptor, &status) == 0 && !S_ISDIR(status.st_mode);
  if (isFile && fcntl(descriptor, F_SETFL, 0) == 0) file_.reset(fdopen(descriptor, "rb"));
  if (!file_) close(descriptor);
  return IsOpen();
}

std::size_t InputFile::Read(void* to, std::size_t size) {
  return file_ ? std::fread(to, 1, size, file_.get()) : 0;
}

bool InputFile::Seek(std::int64_t offset) {
  return file_ && fseeko(file_.get(), static_cast<off_t>(offset), SEEK_SET) == 0;
}

std::optional<std::int64_t> InputFile::BytesLeft() {
  struct stat status = {};
  if (!file_ || fstat(fileno(file_.get()), &status) != 0 || !S_ISREG(status.st_mode)) return std::nullopt;
  const off_t position = ftello(file_.get());
  if (position < 0) return std::nullopt;
  return status.st_size > position ? status.st_size - position : 0;
}

std::optional<std::string> ReadWholeFile(const std::string& path) {
  InputFile file(path);
  if (!file.IsOpen()) return std::nullopt;
  // 0 is no size: the system's own files, which are made as they are read, have it, too.
  const auto size = static_cast<std::size_t>(file.BytesLeft().value_or(0));
  // One byte more than the file has: the last read then comes short and ends the loop.
  const std::size_t block = (size > 0 ? size : kMegabyte) + 1;
  std::string content;
  std::size_t length = 0;
  std::size_t got = 0;
  do {
    content.resize(length + block);
    got = file.Read(content.data() + length, block);
    length += got;
    if (size == 0 && length > kLongestStream) return std::nullopt;
  } while (got == block);
  content.resize(length);
  if (file.HasFailed()) return std::nullopt;
  return content;
}

}  // namespace corvane
