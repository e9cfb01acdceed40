#include "adapters/posix/SystemServices.h"

#include <sys/resource.h>
#include <unistd.h>

namespace endpin {
namespace {

// Behind the screen and the sound, yet never starved: who waits for a lock that it holds does not
// wait for long. On Linux each thread has a niceness of its own.
void stepBack() {
  constexpr int kNicer = 10;  // than the process, whose niceness the thread has so far
  const auto thread = static_cast<id_t>(gettid());
  setpriority(PRIO_PROCESS, thread, getpriority(PRIO_PROCESS, thread) + kNicer);
}

}  // namespace

SerialThread::SerialThread(ThreadPriority priority)
    : thread_([this, priority] { work(priority); }) {}

SerialThread::~SerialThread() {
  {
    const std::lock_guard lock(mutex_);
    ending_ = true;
  }
  changed_.notify_one();
  thread_.join();
}

void SerialThread::addOperation(Call operation) {
  {
    const std::lock_guard lock(mutex_);
    if (ending_) return;
    waiting_.push_back(std::move(operation));
  }
  changed_.notify_one();
}

void SerialThread::work(ThreadPriority priority) {
  if (priority == ThreadPriority::Background) stepBack();
  std::unique_lock lock(mutex_);
  while (true) {
    changed_.wait(lock, [this] { return ending_ || !waiting_.empty(); });
    if (ending_) return;
    Call operation = std::move(waiting_.front());
    waiting_.pop_front();
    lock.unlock();
    operation();
    operation = nullptr;  // what it holds goes outside the lock
    lock.lock();
  }
}

}  // namespace endpin
