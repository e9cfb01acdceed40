// How long a thread was kept from what it does every ten milliseconds, and how much of that was the
// machine's doing: a busy machine lets threads wait for a processor, and a virtual one may stop
// altogether. What is left is what the thread itself waited or worked for.
#pragma once

#include <algorithm>
#include <chrono>
#include <fstream>
#include <limits>
#include <thread>
#include <vector>

namespace endpin::soak {

inline double clockSeconds() {
  const auto now = std::chrono::steady_clock::now().time_since_epoch();
  return std::chrono::duration<double>(now).count();
}

// All in seconds; those of a thread since it began.
struct Beat {
  double time = std::numeric_limits<double>::infinity();
  double waited = 0;  // ready to run, without a processor
  double idle = 0;    // with nothing to do: a wake-up that comes late is the machine's
};

struct Stall {
  Beat from, to;
  [[nodiscard]] double seconds() const { return to.time - from.time; }
};

// Collects the stalls of the thread that makes it and beats it. Those under 30 ms are forgotten.
class Heartbeat {
 public:
  void beat(double idle = 0) {
    const Beat now{clockSeconds(), waited(), idle};
    if (now.time - last_.time >= 0.03) stalls_.push_back({last_, now});
    last_ = now;
  }
  [[nodiscard]] const std::vector<Stall>& stalls() const { return stalls_; }

 private:
  // A kernel that does not tell leaves 0: then the machine is not excused.
  double waited() {
    double ran = 0;
    double waited = 0;
    schedule_.clear();
    schedule_.seekg(0);
    schedule_ >> ran >> waited;  // nanoseconds
    return waited * 1e-9;
  }

  std::ifstream schedule_{"/proc/thread-self/schedstat"};
  Beat last_;
  std::vector<Stall> stalls_;
};

// A thread with nothing to do but to beat: what stalls it is the machine.
class Witness {
 public:
  const std::vector<Stall>& stop() {
    thread_.request_stop();
    thread_.join();
    return stalls_;
  }

 private:
  std::vector<Stall> stalls_;
  std::jthread thread_{[this](const std::stop_token& stop) {
    Heartbeat heartbeat;
    while (!stop.stop_requested()) {
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
      heartbeat.beat();
    }
    stalls_ = heartbeat.stalls();
  }};
};

// What remains of a stall, in seconds, without what the machine is to blame for.
inline double own(const Stall& stall, const std::vector<Stall>& machine) {
  double witnessed = 0;
  for (const Stall& other : machine) {
    witnessed += std::max(
        0.0, std::min(stall.to.time, other.to.time) - std::max(stall.from.time, other.from.time));
  }
  return stall.seconds() - std::max({witnessed, stall.to.waited - stall.from.waited,
                                     stall.to.idle - stall.from.idle});
}

}  // namespace endpin::soak
