// The bytes of an input as the arguments of a program.
#pragma once

#include <string>
#include <vector>

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

}  // namespace endpin::fuzzing
