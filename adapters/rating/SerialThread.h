// A queue with a thread of its own, which runs the operations one at a time and in order, however
// many it is allowed to. An operation throws nothing.
#pragma once

#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>

#include "ports/WorkQueues.h"

namespace endpin {

enum class ThreadPriority { Normal, Background };

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

}  // namespace endpin
