#include "adapters/posix/StopSignal.h"

#include <sys/eventfd.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

#include "adapters/posix/WaitReadable.h"

namespace endpin {

std::atomic<int> StopSignal::handlerDescriptor = -1;

StopSignal::StopSignal() : descriptor_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
  if (descriptor_ < 0) throw std::system_error(errno, std::generic_category(), "eventfd");
  handlerDescriptor = descriptor_;
  struct sigaction action {};
  action.sa_handler = handle;
  action.sa_flags = static_cast<int>(SA_RESETHAND);
  sigemptyset(&action.sa_mask);
  sigaction(SIGINT, &action, &oldInterrupt_);
  sigaction(SIGTERM, &action, &oldTerminate_);
}

StopSignal::~StopSignal() {
  sigaction(SIGINT, &oldInterrupt_, nullptr);
  sigaction(SIGTERM, &oldTerminate_, nullptr);
  handlerDescriptor = -1;
  close(descriptor_);
}

// Thread: whichever the signal hits. Only calls that are safe in a handler.
void StopSignal::handle(int /*signal*/) {
  const int savedError = errno;
  const std::uint64_t one = 1;
  [[maybe_unused]] const auto written = write(handlerDescriptor, &one, sizeof one);
  errno = savedError;
}

bool StopSignal::raised() const {
  return waitUntil(std::chrono::steady_clock::time_point::min());
}

bool StopSignal::waitUntil(std::chrono::steady_clock::time_point time) const {
  return waitReadable({descriptor_}, time);
}

}  // namespace endpin
