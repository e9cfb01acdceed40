#include "adapters/posix/WakeUp.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <system_error>

namespace endpin {
namespace {

using Steady = std::chrono::steady_clock;

// From now to `time`, at least 0. Compared before it is subtracted: the end of time would overflow.
timespec timeLeft(Steady::time_point time) {
  using std::chrono::nanoseconds;
  using std::chrono::seconds;
  const auto now = Steady::now();
  if (time <= now) return {};
  const auto left = std::min<nanoseconds>(time - now, std::chrono::hours(1));
  const auto whole = std::chrono::duration_cast<seconds>(left);
  return {whole.count(), (left - whole).count()};
}

}  // namespace

WakeUp::WakeUp() : descriptor_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
  if (descriptor_ < 0) throw std::system_error(errno, std::generic_category(), "eventfd");
}

WakeUp::~WakeUp() {
  close(descriptor_);
}

void WakeUp::signal() const noexcept {
  const int savedError = errno;
  const std::uint64_t one = 1;
  [[maybe_unused]] const auto written = write(descriptor_, &one, sizeof one);
  errno = savedError;
}

void WakeUp::take() const noexcept {
  std::uint64_t signals = 0;
  [[maybe_unused]] const auto size = read(descriptor_, &signals, sizeof signals);
}

ThreadWakeUp::ThreadWakeUp() {
  sem_init(&signals_, 0, 0);
}

ThreadWakeUp::~ThreadWakeUp() {
  sem_destroy(&signals_);
}

void ThreadWakeUp::signal() const noexcept {
  sem_post(&signals_);
}

void ThreadWakeUp::waitUntil(Steady::time_point time) const {
  const auto sinceStart = time.time_since_epoch();
  const auto whole = std::chrono::floor<std::chrono::seconds>(sinceStart);
  const timespec until{whole.count(), (sinceStart - whole).count()};
  while (sem_clockwait(&signals_, CLOCK_MONOTONIC, &until) != 0) {
    if (errno != EINTR) return;
  }
  while (sem_trywait(&signals_) == 0) continue;
}

bool waitReadable(std::initializer_list<int> descriptors, Steady::time_point time) {
  std::array<pollfd, 4> watched{};
  const std::size_t count = std::min(descriptors.size(), watched.size());
  std::transform(descriptors.begin(), descriptors.begin() + count, watched.begin(),
                 [](int descriptor) {
                   return pollfd{descriptor, POLLIN, 0};
                 });
  for (;;) {
    const timespec left = timeLeft(time);
    if (ppoll(watched.data(), count, &left, nullptr) > 0) return true;
    if (Steady::now() >= time) return false;
  }
}

}  // namespace endpin
