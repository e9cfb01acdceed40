#include "adapters/posix/StopSignal.h"

namespace endpin {

std::atomic<const WakeUp*> StopSignal::handlerWakeUp = nullptr;

StopSignal::StopSignal() {
  handlerWakeUp = &wakeUp_;
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
  handlerWakeUp = nullptr;
}

// Thread: whichever the signal hits. Only calls that are safe in a handler.
void StopSignal::handle(int /*signal*/) {
  if (const WakeUp* wakeUp = handlerWakeUp) wakeUp->signal();
}

bool StopSignal::raised() const {
  return waitUntil(std::chrono::steady_clock::time_point::min());
}

bool StopSignal::waitUntil(std::chrono::steady_clock::time_point time) const {
  return waitReadable({descriptor()}, time);
}

}  // namespace endpin
