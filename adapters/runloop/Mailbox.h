// Calls handed over to the main thread, in the order in which they came. Thread: any.
#pragma once

#include <mutex>
#include <utility>
#include <vector>

#include "ports/RunLoop.h"

namespace endpin {

class Mailbox {
 public:
  void post(RunLoop::Call call) {
    const std::lock_guard lock(mutex_);
    calls_.push_back(std::move(call));
  }

  // Makes the calls that are there now and returns whether there were any. Calls posted meanwhile
  // wait for the next time. Thread: main.
  bool deliver() {
    std::vector<RunLoop::Call> calls;
    {
      const std::lock_guard lock(mutex_);
      calls.swap(calls_);
    }
    for (const RunLoop::Call& call : calls) call();
    return !calls.empty();
  }

 private:
  std::mutex mutex_;
  std::vector<RunLoop::Call> calls_;
};

}  // namespace endpin
