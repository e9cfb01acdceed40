// Waits for descriptors and the clock together. Thread: any.
#pragma once

#include <chrono>
#include <initializer_list>

namespace endpin {

// Waits until one of `descriptors` can be read or `time` has come, whichever is first, and returns
// whether one can be read. Negative descriptors never can. A signal does not end the wait.
bool waitReadable(std::initializer_list<int> descriptors,
                  std::chrono::steady_clock::time_point time);

}  // namespace endpin
