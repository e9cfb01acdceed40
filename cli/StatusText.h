// A tick in words of fixed width. Thread: main.
#pragma once

#include <string>

#include "cli/TickReport.h"

namespace endpin {

struct TextStyle {
  bool colour = false;
  bool utf8 = false;
};

// Frequency, note, lamp, level and the strings tuned so far, on one line without its end.
[[nodiscard]] std::string statusText(const TickReport& report, TextStyle style);

// The same in plain letters without the level, which never stands still.
[[nodiscard]] std::string changeText(const TickReport& report);

}  // namespace endpin
