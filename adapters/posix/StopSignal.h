// Turns the signals that end a terminal program, SIGINT and SIGTERM, into something to ask and to
// wait for. The first one asks for an orderly end; a second one ends the process at once, as if
// nobody had taken it over.
//
// At most one object at a time. Thread: any.
#pragma once

#include <atomic>
#include <chrono>
#include <csignal>

#include "adapters/posix/WakeUp.h"

namespace endpin {

class StopSignal {
 public:
  // Takes both signals over. Calls that a signal interrupts are not restarted. Throws
  // std::system_error when the system refuses.
  StopSignal();
  // Gives them back.
  ~StopSignal();
  StopSignal(const StopSignal&) = delete;
  StopSignal& operator=(const StopSignal&) = delete;

  [[nodiscard]] bool raised() const;

  // Readable from the first signal on. Poll it; do not read it.
  [[nodiscard]] int descriptor() const { return wakeUp_.descriptor(); }

  // Waits until `time` or the first signal, and returns whether there was one.
  bool waitUntil(std::chrono::steady_clock::time_point time) const;

 private:
  static void handle(int signal);

  static std::atomic<const WakeUp*> handlerWakeUp;  // what the handler signals

  const WakeUp wakeUp_;
  struct sigaction oldInterrupt_ {};
  struct sigaction oldTerminate_ {};
};

}  // namespace endpin
