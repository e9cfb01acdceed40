#include "adapters/posix/MainRunLoop.h"

#include <sys/eventfd.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <system_error>
#include <utility>

#include "adapters/posix/WaitReadable.h"

namespace endpin {

MainRunLoop::MainRunLoop() : wakeDescriptor_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
  if (wakeDescriptor_ < 0) throw std::system_error(errno, std::generic_category(), "eventfd");
}

MainRunLoop::~MainRunLoop() {
  close(wakeDescriptor_);
}

RunLoop::TimerId MainRunLoop::scheduleTimer(double seconds, Call fire) {
  return agenda_.addTimer(now(), seconds, std::move(fire));
}

void MainRunLoop::performAfterDelay(double seconds, Call call) {
  agenda_.addCall(now() + std::max(seconds, 0.0), std::move(call));
}

void MainRunLoop::dispatchAsync(Call call) {
  mailbox_.post(std::move(call));
  wake();
}

void MainRunLoop::run(int stopDescriptor) {
  constexpr auto kNow = Clock::time_point::min();
  while (!stopped_ && !waitReadable({stopDescriptor}, kNow)) {
    if (mailbox_.deliver()) continue;
    if (agenda_.nextDue() <= now()) {
      agenda_.take(now())();
      continue;
    }
    if (!waitReadable({wakeDescriptor_, stopDescriptor}, timeOfNextCall())) continue;
    std::uint64_t wakes = 0;
    [[maybe_unused]] const auto size = read(wakeDescriptor_, &wakes, sizeof wakes);
  }
  stopped_ = false;
}

void MainRunLoop::stop() {
  stopped_ = true;
  wake();
}

double MainRunLoop::now() const {
  return std::chrono::duration<double>(Clock::now() - start_).count();
}

MainRunLoop::Clock::time_point MainRunLoop::timeOfNextCall() const {
  constexpr double kLongest = 3600;  // seconds; then it is asked again
  const double due = std::min(agenda_.nextDue(), now() + kLongest);
  // A nanosecond past, so that rounding does not wake the loop just too early.
  return start_ + std::chrono::ceil<Clock::duration>(std::chrono::duration<double>(due)) +
         std::chrono::nanoseconds(1);
}

void MainRunLoop::wake() const {
  const std::uint64_t one = 1;
  [[maybe_unused]] const auto written = write(wakeDescriptor_, &one, sizeof one);
}

}  // namespace endpin
