// What a program prints instead of running.
#pragma once

#include <string>

namespace endpin {

// Help or version, or a list that was asked for: for standard output, and nothing else to do.
struct PrintText {
  std::string text;
};

}  // namespace endpin
