// How long a thread was kept from what it does every ten milliseconds, and how much of that was the
// machine's doing: a busy machine lets threads wait for a processor, and a virtual one may stop
// altogether. What is left is what the thread itself waited or worked for.
#pragma once

#include <atomic>
#include <chrono>
#include <mutex>
#include <thread>
#include <vector>

namespace endpin::soak {

using StallClock = std::chrono::steady_clock;

// What the kernel knows of a thread, in seconds since it began.
struct ThreadTimes {
  double ran = 0;
  double waited = 0;  // ready to run, without a processor
};

// Asks for the thread that made it.
class ThreadClock {
 public:
  ThreadClock();
  ~ThreadClock();
  ThreadClock(const ThreadClock&) = delete;
  [[nodiscard]] ThreadTimes now() const;

 private:
  int file_;
};

struct Stall {
  StallClock::time_point begin;
  StallClock::time_point end;
  ThreadTimes times;  // of it
  double idle = 0;    // seconds of it with nothing to do, waiting to be woken
  [[nodiscard]] double seconds() const {
    return std::chrono::duration<double>(end - begin).count();
  }
};

// Collects the stalls of one thread, which beats it. Those under 30 ms are forgotten.
class Heartbeat {
 public:
  // Thread: the one that is watched, from here on.
  Heartbeat() : last_(StallClock::now()), lastTimes_(clock_.now()) {}
  // `idle` are the seconds that the thread has slept for want of work so far: a wake-up that comes
  // late is the machine's.
  void beat(double idle = 0);

  // After the last beat.
  [[nodiscard]] const std::vector<Stall>& stalls() const { return stalls_; }
  [[nodiscard]] std::size_t beats() const { return beats_; }

 private:
  const ThreadClock clock_;
  StallClock::time_point last_;
  ThreadTimes lastTimes_;
  double lastIdle_ = 0;
  std::size_t beats_ = 0;
  std::vector<Stall> stalls_;
};

// A thread with nothing to do but to beat: what stalls it is the machine.
class Witness {
 public:
  Witness();
  ~Witness() { stop(); }
  Witness(const Witness&) = delete;

  // Ends the thread; its stalls stay.
  void stop();
  [[nodiscard]] const std::vector<Stall>& stalls() const { return stalls_; }

 private:
  std::atomic<bool> quit_ = false;
  std::vector<Stall> stalls_;
  std::thread thread_;
};

// The longest of the stalls, in seconds.
[[nodiscard]] double longest(const std::vector<Stall>& stalls);

// What remains of a stall without what the machine is to blame for, in seconds.
[[nodiscard]] double own(const Stall& stall, const std::vector<Stall>& machine);

}  // namespace endpin::soak
