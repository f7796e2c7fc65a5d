#pragma once

#include <sys/resource.h>

#include <csignal>
#include <cstddef>

namespace corvane {

// Lets no file grow beyond a size, as a full disk does.
class FileSizeLimit {
 public:
  explicit FileSizeLimit(std::size_t size) {
    getrlimit(RLIMIT_FSIZE, &before_);
    const rlimit limit = {size, before_.rlim_max};
    setrlimit(RLIMIT_FSIZE, &limit);
  }
  ~FileSizeLimit() {
    setrlimit(RLIMIT_FSIZE, &before_);
    std::signal(SIGXFSZ, handlerBefore_);
  }
  FileSizeLimit(const FileSizeLimit&) = delete;
  FileSizeLimit& operator=(const FileSizeLimit&) = delete;

 private:
  rlimit before_ = {};
  void (*handlerBefore_)(int) = std::signal(SIGXFSZ, SIG_IGN);
};

}  // namespace corvane
