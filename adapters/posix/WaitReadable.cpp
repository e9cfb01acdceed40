#include "adapters/posix/WaitReadable.h"

#include <poll.h>

#include <algorithm>
#include <vector>

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

bool waitReadable(std::initializer_list<int> descriptors, Steady::time_point time) {
  std::vector<pollfd> watched;
  for (const int descriptor : descriptors) watched.push_back({descriptor, POLLIN, 0});
  for (;;) {
    const timespec left = timeLeft(time);
    if (ppoll(watched.data(), watched.size(), &left, nullptr) > 0) return true;
    if (Steady::now() >= time) return false;
  }
}

}  // namespace endpin
