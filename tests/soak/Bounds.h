// The figures of a soak: each is printed with its bound when it is known, and remembered when it is
// broken. Thread: one at a time.
#pragma once

#include <fmt/format.h>

#include <cstdio>
#include <string>
#include <string_view>

namespace endpin::soak {

class Bounds {
 public:
  // A figure without a bound.
  void tell(std::string_view what, const std::string& figure) {
    fmt::print("  {:<52} {}\n", what, figure);
    std::fflush(stdout);
  }

  void atMost(std::string_view what, double figure, double bound, std::string_view unit) {
    judge(figure <= bound, what, fmt::format("{:.6g} {}", figure, unit),
          fmt::format("at most {:.6g}", bound));
  }

  void atLeast(std::string_view what, double figure, double bound, std::string_view unit) {
    judge(figure >= bound, what, fmt::format("{:.6g} {}", figure, unit),
          fmt::format("at least {:.6g}", bound));
  }

  // The exit code of the program.
  [[nodiscard]] int exitCode() const { return broken_ == 0 ? 0 : 1; }

 private:
  void judge(bool kept, std::string_view what, const std::string& figure,
             const std::string& bound) {
    tell(what, fmt::format("{} ({}){}", figure, bound, kept ? "" : "  BROKEN"));
    broken_ += kept ? 0 : 1;
  }

  int broken_ = 0;
};

}  // namespace endpin::soak
