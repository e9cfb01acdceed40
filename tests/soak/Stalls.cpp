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

ProcessorWait::ProcessorWait() : file_(open("/proc/thread-self/schedstat", O_RDONLY | O_CLOEXEC)) {}

ProcessorWait::~ProcessorWait() {
  if (file_ >= 0) close(file_);
}

// The second number of the file, in nanoseconds. A kernel that does not keep it leaves 0: then the
// machine is not excused.
double ProcessorWait::seconds() const {
  char text[96] = {};
  unsigned long long ran = 0;
  unsigned long long waited = 0;
  if (file_ < 0 || pread(file_, text, sizeof text - 1, 0) <= 0) return 0;
  if (std::sscanf(text, "%llu %llu", &ran, &waited) != 2) return 0;
  return static_cast<double>(waited) * 1e-9;
}

void Heartbeat::beat() {
  const auto now = StallClock::now();
  const double wait = wait_.seconds();
  if (now - last_ >= kShortest) stalls_.push_back({last_, now, wait - lastWait_});
  last_ = now;
  lastWait_ = wait;
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

double longestOwn(const std::vector<Stall>& stalls, const std::vector<Stall>& machine) {
  double most = 0;
  for (const Stall& stall : stalls) {
    double witnessed = 0;
    for (const Stall& other : machine) {
      const auto shared = std::min(stall.end, other.end) - std::max(stall.begin, other.begin);
      witnessed += std::max(0.0, std::chrono::duration<double>(shared).count());
    }
    most = std::max(most, stall.seconds() - std::max(witnessed, stall.processorWait));
  }
  return most;
}

}  // namespace endpin::soak
