#include "adapters/posix/MutedStandardError.h"

#include <fcntl.h>
#include <unistd.h>

namespace endpin {

MutedStandardError::MutedStandardError() {
  const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
  if (nowhere < 0) return;
  saved_ = fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 3);
  if (saved_ >= 0) dup2(nowhere, STDERR_FILENO);
  close(nowhere);
}

MutedStandardError::~MutedStandardError() {
  if (saved_ < 0) return;
  dup2(saved_, STDERR_FILENO);
  close(saved_);
}

}  // namespace endpin
