// What keeps the application from starting: one line for the user and the exit code.
#pragma once

#include <stdexcept>
#include <string>

namespace endpin {

inline constexpr int kExitFailure = 1;  // something is missing on this machine
inline constexpr int kExitUsage = 2;    // it cannot be done as it was asked for

class StartError : public std::runtime_error {
 public:
  StartError(int exitCode, const std::string& message)
      : std::runtime_error(message), exitCode_(exitCode) {}
  [[nodiscard]] int exitCode() const { return exitCode_; }

 private:
  int exitCode_;
};

}  // namespace endpin
