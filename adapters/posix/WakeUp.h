// What a thread waits for: another one that wakes it, descriptors, the clock. Thread: any.
#pragma once

#include <semaphore.h>

#include <chrono>
#include <initializer_list>

namespace endpin {

// Wakes a thread that waits for other descriptors as well. A signal that comes while nobody waits
// is kept for the next wait; of several one is kept.
class WakeUp {
 public:
  // Throws std::system_error when the system refuses.
  WakeUp();
  ~WakeUp();
  WakeUp(const WakeUp&) = delete;
  WakeUp& operator=(const WakeUp&) = delete;

  // Thread: any; also from a signal handler. Realtime-safe: yes.
  void signal() const noexcept;

  // Thread: the one that is woken.
  void take() const noexcept;

  // Can be read while there is a signal to take.
  [[nodiscard]] int descriptor() const { return descriptor_; }

 private:
  const int descriptor_;
};

// The same for a thread that waits for nothing else. It takes no descriptor.
class ThreadWakeUp {
 public:
  ThreadWakeUp();
  ~ThreadWakeUp();
  ThreadWakeUp(const ThreadWakeUp&) = delete;
  ThreadWakeUp& operator=(const ThreadWakeUp&) = delete;

  // Thread: any; also from a signal handler. Realtime-safe: yes.
  void signal() const noexcept;

  // Waits for a signal, until `time` at most, and takes it. Thread: the one that is woken.
  void waitUntil(std::chrono::steady_clock::time_point time) const;

 private:
  mutable sem_t signals_;
};

// Waits until one of `descriptors`, of which there are at most four, can be read or `time` has
// come, whichever is first, and returns whether one can be read. Negative descriptors never can. An
// interrupting signal does not end the wait.
bool waitReadable(std::initializer_list<int> descriptors,
                  std::chrono::steady_clock::time_point time);

}  // namespace endpin
