// Standard output as a place where writing can fail. Thread: main.
#pragma once

#include <cstdio>
#include <string_view>

namespace endpin {

class Output {
 public:
  explicit Output(std::FILE* stream) : stream_(stream) {}

  // Both throw ProgramError when the text cannot be written, a closed pipe included.
  void write(std::string_view text);
  void flush();

  [[nodiscard]] bool isTerminal() const;

 private:
  std::FILE* stream_;
};

}  // namespace endpin
