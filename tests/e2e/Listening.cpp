#include "tests/e2e/Listening.h"

#include <algorithm>
#include <cmath>
#include <nlohmann/json.hpp>
#include <sstream>
#include <stdexcept>

namespace endpin::testing {

Ticks parseTicks(const std::string& output) {
  Ticks ticks;
  std::istringstream lines(output.substr(0, output.rfind('\n') + 1));
  for (std::string line; std::getline(lines, line);) {
    const auto tick = nlohmann::json::parse(line);
    if (tick.size() != 8) throw std::runtime_error("other keys than those of a tick: " + line);
    ticks.push_back({tick.at("time"), tick.at("power"), tick.at("frequency"), tick.at("freq_label"),
                     tick.at("noteDisplay"), tick.at("LEDDisplay"), tick.at("rings"),
                     tick.at("beeps")});
  }
  return ticks;
}

Command endpin(Command arguments) {
  arguments.insert(arguments.begin(), ENDPIN_CLI);
  return arguments;
}

bool greenAt(int string, const Tick& tick, double a4) {
  constexpr double kDivisors[4] = {1000.0, 1000.0, 850.0, 875.0};
  const double reference = kCelloStrings[string].frequency * a4 / 440.0;
  const double off = std::abs(static_cast<double>(tick.frequency) - reference);
  return tick.green() && off <= reference / kDivisors[string];
}

double shareInTune(const Ticks& ticks, int string, double to, double a4) {
  Ticks steady;
  std::ranges::copy_if(ticks, std::back_inserter(steady),
                       [&](const Tick& tick) { return tick.time >= 1.2 && tick.time <= to; });
  const auto inTune =
      std::ranges::count_if(steady, [&](const Tick& tick) { return greenAt(string, tick, a4); });
  return steady.empty() ? 0.0 : static_cast<double>(inTune) / static_cast<double>(steady.size());
}

}  // namespace endpin::testing
