#include "cli/StatusText.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "calibration/StringFrequencies.h"

namespace endpin {
namespace {

constexpr const char* kGreen = "\x1b[32m";
constexpr const char* kYellow = "\x1b[33m";
constexpr const char* kPlain = "\x1b[0m";

std::string coloured(const std::string& text, const char* colour, TextStyle style) {
  return style.colour ? colour + text + kPlain : text;
}

std::string reading(const TickReport& report) {
  const std::string& frequency = report.freq_label;
  return fmt::format("{:>8}  {:2}", frequency.empty() ? "-" : frequency, report.noteDisplay);
}

std::string lampText(const TickReport& report) {
  return report.inTune() ? "green " : "yellow";
}

std::string lamp(const TickReport& report, TextStyle style) {
  const std::string text = (style.utf8 ? "\u25cf " : "* ") + lampText(report);
  return coloured(text, report.inTune() ? kGreen : kYellow, style);
}

// From silence to full scale in decibels.
std::string levelBar(float power, TextStyle style) {
  constexpr int kCells = 15;
  constexpr double kQuietest = -60;  // decibels below full scale
  const double decibels = 20 * std::log10(std::max(static_cast<double>(power), 1e-6));
  const double share = std::clamp(1 - decibels / kQuietest, 0.0, 1.0);
  const int filled = static_cast<int>(std::lround(share * kCells));
  std::string bar = "[";
  for (int i = 0; i < kCells; ++i) {
    const bool on = i < filled;
    bar += style.utf8 ? (on ? "\u2588" : "\u2591") : (on ? "#" : ".");
  }
  return bar + ']';
}

std::string strings(const TickReport& report, TextStyle style) {
  std::string text;
  for (std::size_t i = 0; i < report.rings.size(); ++i) {
    if (i > 0) text += ' ';
    text += report.rings[i] ? coloured(kStringNotes[i], kGreen, style) : "--";
  }
  return text;
}

}  // namespace

std::string statusText(const TickReport& report, TextStyle style) {
  return fmt::format("{}  {}  {}  tuned {}", reading(report), lamp(report, style),
                     levelBar(report.power, style), strings(report, style));
}

std::string changeText(const TickReport& report) {
  return fmt::format("{}  {}  tuned {}", reading(report), lampText(report), strings(report, {}));
}

}  // namespace endpin
