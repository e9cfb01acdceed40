// Any value of any type under the keys that the application reads: it starts, counts its uses, and
// no value reads as something that it is not.
//
// An input is a list of settings: the key (1 byte, or a text), the type (1 byte), the value.
#include <cmath>

#include "adapters/offline/MemoryStore.h"
#include "fuzz/Fuzzing.h"
#include "fuzz/TunerOnFakes.h"
#include "rating/UsageTracker.h"

namespace endpin::fuzzing {
namespace {

constexpr std::array<const char*, 16> kKeys = {"NewFirstLaunchCello",
                                               "a4InHzSavedValue",
                                               "savedA4Calibration",
                                               "numberOfRuns",
                                               "SavedLanguage",
                                               "savedSliderValue",
                                               "soundNotificationEnabled",
                                               "stringSoundsEnabled",
                                               "frequencyChartEnabled",
                                               "currentlyUsingTuningFork",
                                               UsageTracker::kCurrentVersion,
                                               UsageTracker::kFirstUseDate,
                                               UsageTracker::kUseCount,
                                               UsageTracker::kSignificantEventCount,
                                               UsageTracker::kRatedCurrentVersion,
                                               UsageTracker::kReminderRequestDate};

class FixedClock final : public Clock {
 public:
  [[nodiscard]] double secondsSince1970() const override { return 1.7e9; }
};

SettingValue valueFrom(Input& input) {
  switch (input.choice(4)) {
    case 0:
      return input.choice(2) == 1;
    case 1:
      return input.number<std::int64_t>();
    case 2:
      return input.number<double>();
    default:
      return input.text();
  }
}

// Writing a number as text and reading the text gives the number.
void checkTexts(const SettingValue& value) {
  const SettingValue text = asString(value);
  if (const auto* integer = std::get_if<std::int64_t>(&value)) {
    require(asInteger(text) == *integer, "an integer reads back from its text");
  }
  const auto* number = std::get_if<double>(&value);
  if (number && std::isfinite(*number)) {
    require(asDouble(text) == *number, "a number reads back from its text", asString(value));
  }
  require(asBool(SettingValue(asInteger(value))) == (asInteger(value) != 0), "numbers say yes");
}

void put(SettingsStore& store, const char* key, const SettingValue& value) {
  if (const auto* flag = std::get_if<bool>(&value)) store.setBool(key, *flag);
  if (const auto* integer = std::get_if<std::int64_t>(&value)) store.setInteger(key, *integer);
  if (const auto* number = std::get_if<double>(&value)) store.setDouble(key, *number);
  if (const auto* text = std::get_if<std::string>(&value)) store.setString(key, *text);
}

void use(SettingsStore& store) {
  TunerOnFakes tuner(store);
  tuner.controller.tickFree();
  const FixedClock clock;
  UsageTracker book({store, tuner.fake.bundle, clock, tuner.fake.log});
  book.incrementUseCount(true);
  book.incrementSignificantEventCount(true);
  static_cast<void>(book.conditionsHaveBeenMet({}));
  require(tuner.controller.calibration().temperamentIndex() <= 14, "a pitch has a place");
}

}  // namespace
}  // namespace endpin::fuzzing

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace endpin::fuzzing;
  Input input(data, size);
  endpin::MemoryStore store;
  while (!input.ended()) {
    const char* key = kKeys[input.choice(kKeys.size())];
    const endpin::SettingValue value = valueFrom(input);
    checkTexts(value);
    put(store, key, value);
  }
  use(store);
  return 0;
}
