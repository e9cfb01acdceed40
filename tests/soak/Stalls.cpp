#include "tests/soak/Stalls.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>

namespace endpin::soak {
namespace {

using namespace std::chrono_literals;

constexpr auto kBeat = 10ms;
constexpr auto kShortest = 30ms;

}  // namespace

ThreadClock::ThreadClock() : file_(open("/proc/thread-self/schedstat", O_RDONLY | O_CLOEXEC)) {}

ThreadClock::~ThreadClock() {
  if (file_ >= 0) close(file_);
}

// The first two numbers of the file, in nanoseconds. A kernel that does not keep them leaves 0:
// then the machine is not excused.
ThreadTimes ThreadClock::now() const {
  char text[96] = {};
  unsigned long long ran = 0;
  unsigned long long waited = 0;
  if (file_ < 0 || pread(file_, text, sizeof text - 1, 0) <= 0) return {};
  if (std::sscanf(text, "%llu %llu", &ran, &waited) != 2) return {};
  return {static_cast<double>(ran) * 1e-9, static_cast<double>(waited) * 1e-9};
}

void Heartbeat::beat(double idle) {
  const auto now = StallClock::now();
  const ThreadTimes times = clock_.now();
  if (now - last_ >= kShortest) {
    stalls_.push_back({last_,
                       now,
                       {times.ran - lastTimes_.ran, times.waited - lastTimes_.waited},
                       idle - lastIdle_});
  }
  last_ = now;
  lastTimes_ = times;
  lastIdle_ = idle;
  ++beats_;
}

Witness::Witness()
    : thread_([this] {
        Heartbeat heartbeat;
        while (!quit_) {
          std::this_thread::sleep_for(kBeat);
          heartbeat.beat();
        }
        stalls_ = heartbeat.stalls();
      }) {}

void Witness::stop() {
  quit_ = true;
  if (thread_.joinable()) thread_.join();
}

double longest(const std::vector<Stall>& stalls) {
  double most = 0;
  for (const Stall& stall : stalls) most = std::max(most, stall.seconds());
  return most;
}

double own(const Stall& stall, const std::vector<Stall>& machine) {
  double witnessed = 0;
  for (const Stall& other : machine) {
    const auto shared = std::min(stall.end, other.end) - std::max(stall.begin, other.begin);
    witnessed += std::max(0.0, std::chrono::duration<double>(shared).count());
  }
  return stall.seconds() - std::max({witnessed, stall.times.waited, stall.idle});
}

}  // namespace endpin::soak
