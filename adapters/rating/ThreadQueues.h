// Work beside the main thread: a background thread of low priority, whatever priority is named, and
// a thread for each queue.
#pragma once

#include <memory>
#include <utility>

#include "adapters/rating/SerialThread.h"
#include "ports/WorkQueues.h"

namespace endpin {

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

}  // namespace endpin
