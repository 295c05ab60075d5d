// A full disk without root: while this object lives, no file of the process may grow past
// `bytes` (RLIMIT_FSIZE). SIGXFSZ is ignored, so a write past the limit fails with EFBIG as a
// write to a full disk fails with ENOSPC, instead of ending the process.
#pragma once

#include <sys/resource.h>

#include <csignal>
#include <cstddef>

namespace talvex::testing {

class FileSizeLimit {
 public:
  explicit FileSizeLimit(std::size_t bytes) {
    getrlimit(RLIMIT_FSIZE, &saved_);
    previousHandler_ = std::signal(SIGXFSZ, SIG_IGN);
    rlimit limited = saved_;
    limited.rlim_cur = bytes;
    setrlimit(RLIMIT_FSIZE, &limited);
  }
  ~FileSizeLimit() {
    setrlimit(RLIMIT_FSIZE, &saved_);
    std::signal(SIGXFSZ, previousHandler_);
  }
  FileSizeLimit(const FileSizeLimit&) = delete;
  FileSizeLimit& operator=(const FileSizeLimit&) = delete;

 private:
  rlimit saved_{};
  void (*previousHandler_)(int) = nullptr;
};

}  // namespace talvex::testing
