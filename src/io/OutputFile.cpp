#include "io/OutputFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>

#include "io/Paths.h"
#include "io/Target.h"

namespace corvane {

namespace {

constexpr std::size_t kBufferSize = std::size_t{1} << 18;
constexpr const char* kOpenFiles = "/proc/self/fd/";  // the way from a descriptor to a name

mode_t NewFileMode() {
  const mode_t mask = umask(0);
  umask(mask);
  return 0666 & ~mask;
}

}  // namespace

OutputFile::~OutputFile() {
  Discard();
}

bool OutputFile::Open(const std::string& path) {
  Discard();
  path_ = path;
  failed_ = false;
  if (path.empty() || HoldsZero(path)) return false;
  target_ = ResolvedTarget(path);

  struct stat status = {};
  const bool exists = stat(target_.c_str(), &status) == 0;
  if (exists && (S_ISDIR(status.st_mode) || access(target_.c_str(), W_OK) != 0)) return false;
  isDirect_ = exists && !S_ISREG(status.st_mode);
  if (isDirect_) {
    descriptor_ = open(target_.c_str(), O_WRONLY | O_CLOEXEC);
    return IsOpen();
  }
  if (!std::filesystem::path(target_).has_filename()) return false;
  return OpenBeside(exists ? status.st_mode & 07777 : NewFileMode());
}

bool OutputFile::OpenBeside(unsigned mode) {
  if (access(kOpenFiles, X_OK) == 0) {
    descriptor_ = open(FolderOf(target_).c_str(), O_TMPFILE | O_WRONLY | O_CLOEXEC, 0600);
  }
  if (!IsOpen()) {
    temporaryPath_ = FolderOf(target_) + "/.corvane-XXXXXX";
    descriptor_ = mkostemp(temporaryPath_.data(), O_CLOEXEC);
    if (!IsOpen()) temporaryPath_.clear();
  }
  if (IsOpen()) fchmod(descriptor_, mode);
  return IsOpen();
}

bool OutputFile::Write(const void* from, std::size_t size) {
  if (!IsOpen() || failed_) return false;
  const char* bytes = static_cast<const char*>(from);
  if (buffer_.size() + size > kBufferSize && !Flush()) return false;
  if (size >= kBufferSize) return WriteOut(bytes, size);
  if (buffer_.capacity() < kBufferSize) buffer_.reserve(kBufferSize);
  buffer_.insert(buffer_.end(), bytes, bytes + size);
  return true;
}

bool OutputFile::Seek(std::int64_t offset) {
  if (!Flush()) return false;
  if (lseek(descriptor_, static_cast<off_t>(offset), SEEK_SET) < 0) failed_ = true;
  return !failed_;
}

bool OutputFile::Commit() {
  const bool good = Flush() && (isDirect_ || MoveOntoTarget());
  Discard();
  return good;
}

// A nameless file first gets a hidden name, because only a name can be moved onto another.
bool OutputFile::MoveOntoTarget() {
  if (fsync(descriptor_) != 0) return false;
  if (temporaryPath_.empty()) {
    const std::string opened = std::string(kOpenFiles) + std::to_string(descriptor_);
    std::string name = FolderOf(target_) + "/.corvane-" + std::to_string(getpid());
    while (linkat(AT_FDCWD, opened.c_str(), AT_FDCWD, name.c_str(), AT_SYMLINK_FOLLOW) != 0) {
      if (errno != EEXIST) return false;
      name += '-';
    }
    temporaryPath_ = name;
  }
  if (rename(temporaryPath_.c_str(), target_.c_str()) != 0) return false;
  temporaryPath_.clear();
  return true;
}

void OutputFile::Discard() {
  if (IsOpen()) close(descriptor_);
  descriptor_ = -1;
  if (!temporaryPath_.empty()) unlink(temporaryPath_.c_str());
  temporaryPath_.clear();
  buffer_.clear();
}

bool OutputFile::Flush() {
  if (!IsOpen() || failed_) return false;
  const bool good = WriteOut(buffer_.data(), buffer_.size());
  buffer_.clear();
  return good;
}

bool OutputFile::WriteOut(const char* from, std::size_t size) {
  while (size > 0) {
    const ssize_t written = write(descriptor_, from, size);
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) {
      failed_ = true;
      return false;
    }
    from += written;
    size -= static_cast<std::size_t>(written);
  }
  // Starts the way to the disk while more is computed, so that Commit waits for little.
  if (!isDirect_) sync_file_range(descriptor_, 0, 0, SYNC_FILE_RANGE_WRITE);
  return true;
}

bool WriteWholeFile(const std::string& path, std::string_view content) {
  OutputFile file(path);
  return file.IsOpen() && file.Write(content) && file.Commit();
}

bool UpdateFileStart(const std::string& path, const void* from, std::size_t size) {
  const int descriptor = HoldsZero(path) ? -1 : open(path.c_str(), O_WRONLY | O_CLOEXEC);
  if (descriptor < 0) return false;
  const bool good = pwrite(descriptor, from, size, 0) == static_cast<ssize_t>(size);
  return (close(descriptor) == 0) && good;
}

}  // namespace corvane
