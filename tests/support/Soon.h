#pragma once

#include <chrono>
#include <thread>

namespace endpin::testing {

// Waits until `holds`, for at most `limit`, and returns whether it does.
template <typename Condition>
bool soon(std::chrono::milliseconds limit, Condition holds) {
  const auto deadline = std::chrono::steady_clock::now() + limit;
  while (!holds()) {
    if (std::chrono::steady_clock::now() >= deadline) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(2));
  }
  return true;
}

}  // namespace endpin::testing
