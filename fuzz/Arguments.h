// The bytes of an input as the arguments of a program.
#pragma once

#include <string>
#include <vector>

#include "adapters/cli11/ProgramError.h"
#include "fuzz/Fuzzing.h"

namespace endpin::fuzzing {

class Arguments {
 public:
  // Zero bytes part them, as nothing else can: arguments may hold line ends.
  Arguments(const char* program, const std::uint8_t* data, std::size_t size) {
    texts_.emplace_back(program);
    if (size > 0) texts_.emplace_back();
    for (const std::uint8_t byte : std::span(data, size)) {
      if (byte == 0) {
        texts_.emplace_back();
      } else {
        texts_.back() += static_cast<char>(byte);
      }
    }
    for (const std::string& text : texts_) values_.push_back(text.c_str());
    values_.push_back(nullptr);
  }
  Arguments(const Arguments&) = delete;
  Arguments& operator=(const Arguments&) = delete;

  [[nodiscard]] int count() const { return static_cast<int>(texts_.size()); }
  [[nodiscard]] const char* const* values() const { return values_.data(); }

 private:
  std::vector<std::string> texts_;
  std::vector<const char*> values_;
};

inline void check(const PrintText& text) {
  require(!text.text.empty() && text.text.back() == '\n', "what is printed is whole lines");
}

// What `parse` makes of the arguments, it checks itself; what it rejects, it rejects in one line
// and with exit code 2.
template <class Parse>
void parseOrReject(const Arguments& arguments, Parse parse) {
  try {
    parse(arguments.count(), arguments.values());
  } catch (const ProgramError& error) {
    require(error.exitCode() == kExitUsage, "wrong arguments are wrong usage");
    require(isOneLine(error.what()), "a complaint is one line", error.what());
  }
}

}  // namespace endpin::fuzzing
