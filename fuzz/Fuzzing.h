// What the fuzzers share: the check that makes a broken promise a finding.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
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

}  // namespace endpin::fuzzing

// What every fuzzer defines: takes one input through what it tries.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);
