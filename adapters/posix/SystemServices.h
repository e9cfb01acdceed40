// What a system with threads and a clock does for the rating prompt: work beside the main thread,
// and the time of day.
#pragma once

#include <chrono>
#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>
#include <thread>
#include <utility>

#include "ports/RatingPlatform.h"

namespace endpin {

enum class ThreadPriority { Normal, Background };

// A queue with a thread of its own, which runs the operations one at a time and in order, however
// many it is allowed to. An operation throws nothing.
class SerialThread final : public OperationQueue {
 public:
  // Throws std::system_error when the system has no thread left.
  explicit SerialThread(ThreadPriority priority = ThreadPriority::Normal);
  ~SerialThread() override;
  SerialThread(const SerialThread&) = delete;
  SerialThread& operator=(const SerialThread&) = delete;

  void setMaxConcurrentOperationCount(int /*count*/) override {}
  void addOperation(Call operation) override;

 private:
  void work(ThreadPriority priority);

  std::mutex mutex_;
  std::condition_variable changed_;
  std::deque<Call> waiting_;
  bool ending_ = false;
  std::thread thread_;  // last: it uses the rest
};

// A background thread of low priority, whatever priority is named, and a thread for each queue.
class ThreadQueues final : public WorkQueues {
 public:
  void dispatchAsync(int /*priority*/, Call call) override {
    background_.addOperation(std::move(call));
  }
  std::unique_ptr<OperationQueue> newOperationQueue() override {
    return std::make_unique<SerialThread>();
  }

 private:
  SerialThread background_{ThreadPriority::Background};
};

class SystemClock final : public Clock {
 public:
  [[nodiscard]] double secondsSince1970() const override {
    const auto now = std::chrono::system_clock::now().time_since_epoch();
    return std::chrono::duration<double>(now).count();
  }
};

}  // namespace endpin
