// What ends a command early: one line for the user and the exit code.
#pragma once

#include <stdexcept>
#include <string>

namespace endpin {

inline constexpr int kExitFailure = 1;  // something went wrong on the way
inline constexpr int kExitUsage = 2;    // the command cannot be carried out as it was given

class CliError : public std::runtime_error {
 public:
  CliError(int exitCode, const std::string& message)
      : std::runtime_error(message), exitCode_(exitCode) {}
  [[nodiscard]] int exitCode() const { return exitCode_; }

 private:
  int exitCode_;
};

}  // namespace endpin
