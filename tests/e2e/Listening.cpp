#include "tests/e2e/Listening.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <nlohmann/json.hpp>
#include <set>
#include <sstream>
#include <stdexcept>
#include <thread>

namespace endpin::testing {
namespace {

using namespace std::chrono_literals;

const std::set<std::string> kKeys = {"time",        "power",      "frequency", "freq_label",
                                     "noteDisplay", "LEDDisplay", "rings",     "beeps"};

Tick parseTick(const std::string& line) {
  const nlohmann::json object = nlohmann::json::parse(line);
  std::set<std::string> keys;
  for (const auto& item : object.items()) keys.insert(item.key());
  if (keys != kKeys) throw std::runtime_error("other keys than those of a tick");
  return {object["time"].get<double>(),
          object["power"].get<double>(),
          object["frequency"].get<float>(),
          object["freq_label"].get<std::string>(),
          object["noteDisplay"].get<std::string>(),
          object["LEDDisplay"].get<std::string>(),
          object["rings"].get<std::array<bool, 4>>(),
          object["beeps"].get<int>()};
}

}  // namespace

Ticks parseTicks(const std::string& output) {
  Ticks ticks;
  std::istringstream lines(output.substr(0, output.rfind('\n') + 1));
  for (std::string line; std::getline(lines, line);) {
    try {
      ticks.push_back(parseTick(line));
    } catch (const std::exception& error) {
      throw std::runtime_error(std::string(error.what()) + " in: " + line);
    }
  }
  return ticks;
}

Command endpin(const std::vector<std::string>& arguments) {
  Command command = {ENDPIN_CLI};
  command.insert(command.end(), arguments.begin(), arguments.end());
  return command;
}

bool inBand(int string, double frequency) {
  constexpr double kDivisors[4] = {1000.0, 1000.0, 850.0, 875.0};
  const double reference = kCelloStrings[string].frequency;
  return std::abs(frequency - reference) <= reference / kDivisors[string];
}

int countOf(const Ticks& ticks, const std::function<bool(const Tick&)>& holds) {
  return static_cast<int>(std::count_if(ticks.begin(), ticks.end(), holds));
}

double shareInTune(const Ticks& ticks, int string, double to) {
  const auto steady = [&](const Tick& tick) { return tick.time >= 1.2 && tick.time <= to; };
  const int inTune = countOf(ticks, [&](const Tick& tick) {
    return steady(tick) && tick.green() && inBand(string, static_cast<double>(tick.frequency));
  });
  const int all = countOf(ticks, steady);
  return all == 0 ? 0.0 : inTune / static_cast<double>(all);
}

void expectJudged(const Ticks& ticks, int string) {
  const std::string note = kCelloStrings[string].note;
  ASSERT_FALSE(ticks.empty());
  std::array<bool, 4> ring{};
  ring[static_cast<size_t>(string)] = true;
  for (const Tick& tick : ticks) {
    if (tick.green()) {
      ASSERT_EQ(tick.note, note) << "at " << tick.time;
      ASSERT_EQ(tick.rings, ring) << "at " << tick.time;
    } else if (tick.rings != ring) {
      ASSERT_EQ(tick.rings, (std::array<bool, 4>{})) << "at " << tick.time;
    }
  }
  EXPECT_GT(countOf(ticks, [](const Tick& tick) { return tick.green(); }), 0) << note;
  EXPECT_GE(ticks.back().beeps, 1) << note;
}

void expectNoJudgement(const Ticks& ticks) {
  EXPECT_GT(ticks.size(), 10U);
  for (const Tick& tick : ticks) {
    ASSERT_FALSE(tick.green()) << tick.frequency << " Hz at " << tick.time;
    ASSERT_EQ(tick.note, "") << tick.frequency << " Hz at " << tick.time;
    ASSERT_EQ(tick.rings, (std::array<bool, 4>{})) << tick.frequency << " Hz at " << tick.time;
    ASSERT_EQ(tick.beeps, 0) << tick.frequency << " Hz at " << tick.time;
  }
}

LiveListener::LiveListener(const Environment& environment,
                           const std::vector<std::string>& arguments)
    : child_(
          [&] {
            Command command = endpin({"listen", "--json", "--a4", "440"});
            command.insert(command.end(), arguments.begin(), arguments.end());
            return command;
          }(),
          environment) {}

bool LiveListener::hears(const std::function<bool(const Tick&)>& holds,
                         std::chrono::milliseconds limit) {
  const auto deadline = std::chrono::steady_clock::now() + limit;
  const size_t old = ticks().size();
  while (child_.running() && std::chrono::steady_clock::now() < deadline) {
    const Ticks all = ticks();
    if (std::any_of(all.begin() + static_cast<std::ptrdiff_t>(old), all.end(), holds)) return true;
    std::this_thread::sleep_for(20ms);
  }
  return false;
}

}  // namespace endpin::testing
