// The time of day from the system. Thread: any.
#pragma once

#include <chrono>

#include "ports/RatingPlatform.h"

namespace endpin {

class SystemClock final : public Clock {
 public:
  [[nodiscard]] double secondsSince1970() const override {
    const auto now = std::chrono::system_clock::now().time_since_epoch();
    return std::chrono::duration<double>(now).count();
  }
};

}  // namespace endpin
