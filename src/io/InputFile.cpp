#include "io/InputFile.h"

#include <sys/stat.h>

namespace corvane {

bool InputFile::Open(const std::string& path) {
  file_.reset(std::fopen(path.c_str(), "rb"));
  if (!file_) return false;
  struct stat status = {};
  if (fstat(fileno(file_.get()), &status) != 0 || S_ISDIR(status.st_mode)) file_.reset();
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
  std::string content;
  if (const auto size = file.BytesLeft()) content.reserve(static_cast<std::size_t>(*size) + 1);
  constexpr std::size_t kBlock = std::size_t{1} << 20;
  std::size_t got = 0;
  do {
    const std::size_t length = content.size();
    content.resize(length + kBlock);
    got = file.Read(content.data() + length, kBlock);
    content.resize(length + got);
  } while (got == kBlock);
  return content;
}

}  // namespace corvane
