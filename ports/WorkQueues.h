// Work beside the main thread: the process's background queue, and queues of one's own that keep
// the order. Called by the rating prompt for its bookkeeping.
#pragma once

#include <functional>
#include <memory>

namespace endpin {

inline constexpr int kWorkPriorityBackground = -2;  // behind everything that the user waits for

class OperationQueue {
 public:
  using Call = std::function<void()>;

  // Drops the operations that have not begun and waits for those that run. Never called from an
  // operation of this queue.
  virtual ~OperationQueue() = default;

  // How many operations may run at a time. Thread: the maker's, before the first operation.
  virtual void setMaxConcurrentOperationCount(int count) = 0;

  // Runs `operation` on a thread of the queue, in the order of the calls. Returns at once.
  // Thread: any.
  virtual void addOperation(Call operation) = 0;
};

class WorkQueues {
 public:
  using Call = std::function<void()>;

  // Drops the calls that have not begun and waits for those that run.
  virtual ~WorkQueues() = default;

  // Runs `call` on a thread of the background queue of that priority; calls may overlap and
  // overtake each other. Returns at once.
  // Thread: any.
  virtual void dispatchAsync(int priority, Call call) = 0;

  // An empty queue, owned by the caller. Thread: any.
  virtual std::unique_ptr<OperationQueue> newOperationQueue() = 0;
};

}  // namespace endpin
