// Holds back what libraries print to standard error while the object lives: for those that cannot
// be told to keep quiet. It mutes the whole process, so keep it short.
// Thread: one object at a time.
#pragma once

#include <fcntl.h>
#include <unistd.h>

namespace endpin {

class MutedStandardError {
 public:
  MutedStandardError() {
    const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
    if (nowhere < 0) return;
    saved_ = fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 3);
    if (saved_ >= 0) dup2(nowhere, STDERR_FILENO);
    close(nowhere);
  }
  ~MutedStandardError() {
    if (saved_ < 0) return;
    dup2(saved_, STDERR_FILENO);
    close(saved_);
  }
  MutedStandardError(const MutedStandardError&) = delete;
  MutedStandardError& operator=(const MutedStandardError&) = delete;

 private:
  int saved_ = -1;  // the descriptor to restore, or -1 when nothing was muted
};

}  // namespace endpin
