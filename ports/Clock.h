// The time of day. Called by the rating prompt, which remembers dates across launches. Thread: any.
#pragma once

namespace endpin {

class Clock {
 public:
  virtual ~Clock() = default;

  // Seconds since the beginning of 1970, with fractions. It follows the user's clock, and goes back
  // when the clock is set back.
  [[nodiscard]] virtual double secondsSince1970() const = 0;
};

}  // namespace endpin
