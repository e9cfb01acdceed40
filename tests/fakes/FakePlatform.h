// A whole platform in memory: the test sets what it answers and reads what it was told.
#pragma once

#include <algorithm>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "ports/Platform.h"
#include "tests/fakes/FakeAudioInput.h"

namespace endpin::fakes {

class FakeLog final : public Log {
 public:
  void line(std::string_view text) override { lines.emplace_back(text); }
  [[nodiscard]] auto count(std::string_view text) const {
    return std::count(lines.begin(), lines.end(), text);
  }
  std::vector<std::string> lines;
};

// Time passes only through advance.
class FakeRunLoop final : public RunLoop {
 public:
  TimerId scheduleTimer(double seconds, Call fire) override {
    timers.push_back({seconds, 1, now, std::move(fire)});
    return static_cast<TimerId>(timers.size());
  }
  void performAfterDelay(double seconds, Call call) override {
    delayed.emplace_back(now + seconds, std::move(call));
  }
  void dispatchAsync(Call call) override { performAfterDelay(0, std::move(call)); }

  // Runs delayed calls, earliest first, then timers, up to `seconds` from now.
  void advance(double seconds) {
    const double end = now + seconds + 1e-9;
    while (true) {
      auto call = std::min_element(delayed.begin(), delayed.end(),
                                   [](const auto& a, const auto& b) { return a.first < b.first; });
      auto timer = std::min_element(timers.begin(), timers.end(),
                                    [](const auto& a, const auto& b) { return a.due() < b.due(); });
      const double nextCall = call == delayed.end() ? end + 1 : call->first;
      const double nextTimer = timer == timers.end() ? end + 1 : timer->due();
      if (std::min(nextCall, nextTimer) > end) break;
      now = std::min(nextCall, nextTimer);
      if (nextCall <= nextTimer) {
        Call due = std::move(call->second);
        delayed.erase(call);
        due();
      } else {
        ++timer->next;
        Call due = timer->fire;
        due();
      }
    }
    now = end - 1e-9;
  }

  struct Timer {
    double interval;
    int next;
    double start;
    Call fire;
    [[nodiscard]] double due() const { return start + interval * next; }
  };
  double now = 0;
  std::vector<Timer> timers;
  std::vector<std::pair<double, Call>> delayed;
};

class FakeSettings final : public SettingsStore {
 public:
  using Value = std::variant<std::int64_t, bool, double, std::string>;

  std::int64_t integerForKey(std::string_view key) const override {
    const auto found = values.find(std::string(key));
    if (found == values.end()) return 0;
    const auto* integer = std::get_if<std::int64_t>(&found->second);
    return integer ? *integer : static_cast<std::int64_t>(doubleForKey(key));
  }
  bool boolForKey(std::string_view key) const override { return doubleForKey(key) != 0; }
  double doubleForKey(std::string_view key) const override {
    const auto found = values.find(std::string(key));
    if (found == values.end()) return 0;
    if (const auto* integer = std::get_if<std::int64_t>(&found->second)) {
      return static_cast<double>(*integer);
    }
    if (const auto* flag = std::get_if<bool>(&found->second)) return *flag ? 1 : 0;
    if (const auto* number = std::get_if<double>(&found->second)) return *number;
    return 0;
  }
  std::optional<std::string> stringForKey(std::string_view key) const override {
    const auto found = values.find(std::string(key));
    if (found == values.end() || !std::holds_alternative<std::string>(found->second)) return {};
    return std::get<std::string>(found->second);
  }
  void setInteger(std::string_view key, std::int64_t value) override { put(key, value); }
  void setBool(std::string_view key, bool value) override { put(key, value); }
  void setDouble(std::string_view key, double value) override { put(key, value); }
  void setString(std::string_view key, std::string_view value) override {
    put(key, std::string(value));
  }
  void removeAll() override {
    values.clear();
    writes.emplace_back("(cleared)");
  }
  void synchronize() override { ++synchronized; }

  std::map<std::string, Value> values;
  std::vector<std::string> writes;  // keys in the order in which they were written
  int synchronized = 0;

 private:
  void put(std::string_view key, Value value) {
    values.insert_or_assign(std::string(key), std::move(value));
    writes.emplace_back(key);
  }
};

class FakeSession final : public AudioSession {
 public:
  Error setCategory(AudioSessionCategory category, std::uint32_t options) override {
    calls.push_back((category == AudioSessionCategory::Playback ? "playback " : "record ") +
                    std::to_string(options));
    return categoryError;
  }
  Error setMode(AudioSessionMode mode) override {
    calls.emplace_back(mode == AudioSessionMode::Measurement ? "measurement" : "default");
    return {};
  }
  Error setActive(bool active) override {
    calls.emplace_back(active ? "active" : "inactive");
    return activeError;
  }
  float outputVolume() const override { return volume; }

  Error categoryError;
  Error activeError;
  float volume = 1;
  std::vector<std::string> calls;
};

class FakePlayers final : public AudioPlayers {
 public:
  std::unique_ptr<AudioPlayer> playerWithContentsOf(const std::string& path) override {
    paths.push_back(path);
    if (missing) return nullptr;
    return std::make_unique<Player>(plays);
  }
  bool missing = false;
  int plays = 0;
  std::vector<std::string> paths;

 private:
  struct Player final : AudioPlayer {
    explicit Player(int& counter) : count(counter) {}
    void play() override { ++count; }
    int& count;
  };
};

class FakeOutput final : public AudioOutput {
 public:
  std::unique_ptr<AudioOutputUnit> newOutputUnit() override {
    if (missing) return nullptr;
    ++unitsMade;
    return std::make_unique<Unit>(*this);
  }
  bool missing = false;
  int unitsMade = 0;
  int starts = 0;
  int stops = 0;
  AudioStreamFormat format;
  AudioRenderCallback callback = nullptr;
  void* userData = nullptr;

 private:
  struct Unit final : AudioOutputUnit {
    explicit Unit(FakeOutput& output) : owner(output) {}
    AudioStatus setStreamFormat(const AudioStreamFormat& wanted) override {
      owner.format = wanted;
      return 0;
    }
    AudioStatus setRenderCallback(AudioRenderCallback render, void* data) override {
      owner.callback = render;
      owner.userData = data;
      return 0;
    }
    AudioStatus initialize() override { return 0; }
    AudioStatus start() override { return ++owner.starts, 0; }
    AudioStatus stop() override { return ++owner.stops, 0; }
    FakeOutput& owner;
  };
};

class FakeDevice final : public Device {
 public:
  std::optional<int> userInterfaceIdiom() const override { return idiom; }
  double screenHeight() const override { return height; }
  std::string systemVersion() const override { return version; }
  void setIdleTimerDisabled(bool disabled) override { idleTimerDisabled = disabled; }

  std::optional<int> idiom = 0;
  double height = 844;
  std::string version = "12.0";
  bool idleTimerDisabled = false;
};

class FakeBundle final : public Bundle {
 public:
  std::string resourcePath() const override { return "/resources"; }
  std::string localizedString(std::string_view key, std::string_view value,
                              std::string_view) const override {
    if (missing.contains(std::string(key))) return std::string(value.empty() ? key : value);
    return "[" + std::string(key) + "]";
  }
  std::optional<std::string> infoValue(std::string_view) const override { return {}; }
  std::optional<std::string> localizedInfoValue(std::string_view) const override { return {}; }

  std::set<std::string> missing;
};

struct FakePlatform {
  FakeAudioInput input;
  FakeSession session;
  FakePlayers players;
  FakeOutput output;
  FakeRunLoop runLoop;
  FakeSettings settings;
  FakeDevice device;
  FakeBundle bundle;
  FakeLog log;
  Platform platform{input, session, players, output, runLoop, settings, device, bundle, log};
};

}  // namespace endpin::fakes
