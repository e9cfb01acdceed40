// What ends a program early: one line for the user and the exit code, or a text that was asked for.
// Thread: any.
#pragma once

#include <algorithm>
#include <stdexcept>
#include <string>

namespace endpin {

inline constexpr int kExitFailure = 1;  // something is missing, or went wrong on the way
inline constexpr int kExitUsage = 2;    // it cannot be done as it was asked for

// Help or version, or a list that was asked for: for standard output, and nothing else to do.
struct PrintText {
  std::string text;
};

// One line: control characters, such as the line ends in a file's name, become '?'.
[[nodiscard]] inline std::string printable(std::string text) {
  std::replace_if(
      text.begin(), text.end(), [](unsigned char c) { return c < ' '; }, '?');
  return text;
}

class ProgramError : public std::runtime_error {
 public:
  ProgramError(int exitCode, const std::string& message)
      : std::runtime_error(printable(message)), exitCode_(exitCode) {}
  [[nodiscard]] int exitCode() const { return exitCode_; }

 private:
  int exitCode_;
};

}  // namespace endpin
