// What the fuzzers share: a reader that takes an input apart from its front, and the check that
// makes a broken promise a finding.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <span>
#include <string>

namespace endpin::fuzzing {

// Ends the process when `holds` is false: the fuzzer keeps the input. A constant text would not say
// which of the values broke the promise; pass those in `values`.
inline void require(bool holds, const char* promise, const std::string& values = "") {
  if (holds) return;
  std::fprintf(stderr, "broken: %s %s\n", promise, values.c_str());
  std::abort();
}

// Whether `text` can be shown as one line.
inline bool isOneLine(std::string_view text) {
  return !text.empty() && text.find('\n') == text.npos;
}

// Values in the order in which they stand in the input; zeros after its end.
class Input {
 public:
  Input(const std::uint8_t* data, std::size_t size) : rest_(data, size) {}

  [[nodiscard]] bool ended() const { return rest_.empty(); }

  // Any bit pattern of a number.
  template <class Number>
  Number number() {
    std::array<std::uint8_t, sizeof(Number)> bits{};
    const auto got = bytes(bits.size());
    std::copy(got.begin(), got.end(), bits.begin());
    Number value{};
    std::memcpy(&value, bits.data(), bits.size());
    return value;
  }

  // 0 to `count` - 1, from one byte.
  std::size_t choice(std::size_t count) { return number<std::uint8_t>() % count; }

  // At most `count` bytes, fewer at the end.
  std::span<const std::uint8_t> bytes(std::size_t count) {
    const auto got = rest_.first(std::min(count, rest_.size()));
    rest_ = rest_.subspan(got.size());
    return got;
  }
  std::span<const std::uint8_t> rest() { return bytes(rest_.size()); }
  std::string restAsText() {
    const auto all = rest();
    return {all.begin(), all.end()};
  }

 private:
  std::span<const std::uint8_t> rest_;
};

}  // namespace endpin::fuzzing

// What every fuzzer defines: takes one input through what it tries.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);
