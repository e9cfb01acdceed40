// A whole platform in memory: the test sets what it answers and reads what it was told.
#pragma once

#include <algorithm>
#include <atomic>
#include <deque>
#include <map>
#include <memory>
#include <mutex>
#include <span>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "adapters/offline/MemoryStore.h"
#include "adapters/offline/VirtualRunLoop.h"
#include "ports/Platform.h"

namespace endpin::fakes {

struct FakeLog final : Log {
  void line(std::string_view text) override {
    const std::lock_guard guard(lock);
    lines.emplace_back(text);
  }
  [[nodiscard]] auto count(std::string_view text) const {
    return std::count(lines.begin(), lines.end(), text);
  }
  std::mutex lock;
  std::vector<std::string> lines;
};

// Keeps what it was asked for, in seconds.
struct FakeRunLoop final : VirtualRunLoop {
  TimerId scheduleTimer(double seconds, Call fire) override {
    timers.push_back(seconds);
    return VirtualRunLoop::scheduleTimer(seconds, std::move(fire));
  }
  void performAfterDelay(double seconds, Call call) override {
    delayed.push_back(seconds);
    VirtualRunLoop::performAfterDelay(seconds, std::move(call));
  }
  std::vector<double> timers, delayed;
};

struct FakeSettings final : MemoryStore {
  // Lets others go between a reading and the writing after it.
  std::optional<SettingValue> find(std::string_view key) const override {
    auto value = MemoryStore::find(key);
    std::this_thread::yield();
    return value;
  }
  void removeAll() override {
    MemoryStore::removeAll();
    note("(cleared)");
  }
  void synchronize() override { unsynchronized = 0; }
  void set(std::string_view key, SettingValue value) override {
    MemoryStore::set(key, std::move(value));
    note(key);
  }
  void note(std::string_view write) {
    const std::lock_guard guard(lock);
    writes.emplace_back(write);
    ++unsynchronized;
  }
  std::mutex lock;
  std::vector<std::string> writes;  // keys in the order in which they were written
  std::atomic<int> unsynchronized = 0;
};

// A microphone that delivers when the test says so.
struct FakeInputQueue final : AudioInputQueue {
  FakeInputQueue(AudioInputCallback call, void* data) : callback(call), userData(data) {}

  AudioStatus allocateBuffer(std::uint32_t byteSize, AudioInputBuffer** buffer) override {
    auto& memory = memories.emplace_back(byteSize / 2);
    *buffer = &buffers.emplace_back(AudioInputBuffer{memory.data(), byteSize, 0});
    return 0;
  }
  AudioStatus enqueueBuffer(AudioInputBuffer* buffer) override {
    queued.push_back(buffer);
    return 0;
  }
  AudioStatus start() override {
    running = true;
    return ++starts, 0;
  }
  AudioStatus stop(bool) override {
    running = false;
    return ++stops, 0;
  }
  AudioStatus isRunning(std::uint32_t& value) const override {
    value = running;
    return runningStatus;
  }
  AudioStatus enableLevelMetering(std::uint32_t enable) override {
    metering = enable;
    return 0;
  }
  AudioStatus currentLevelMeter(LevelMeterState* levels, std::uint32_t byteSize) const override {
    if (byteSize >= sizeof(level)) *levels = level;
    return 0;
  }

  // Fills the next queued buffer and hands it over; false when none is queued.
  bool deliver(std::span<const std::int16_t> samples) {
    if (queued.empty()) return false;
    AudioInputBuffer* buffer = queued.front();
    queued.pop_front();
    std::copy(samples.begin(), samples.end(), buffer->mAudioData);
    buffer->mAudioDataByteSize = static_cast<std::uint32_t>(samples.size_bytes());
    callback(userData, this, buffer);
    return true;
  }

  const AudioInputCallback callback;
  void* const userData;
  std::deque<std::vector<std::int16_t>> memories;
  std::deque<AudioInputBuffer> buffers;
  std::deque<AudioInputBuffer*> queued;
  bool running = false;
  AudioStatus runningStatus = 0;
  std::uint32_t metering = 0;
  LevelMeterState level;
  int starts = 0, stops = 0;
};

struct FakeAudioInput final : AudioInput {
  std::unique_ptr<AudioInputQueue> newInput(const AudioStreamFormat& wanted,
                                            AudioInputCallback callback, void* userData) override {
    format = wanted;
    ++queuesMade;
    if (!works) return nullptr;
    auto made = std::make_unique<FakeInputQueue>(callback, userData);
    queue = made.get();
    return made;
  }

  bool works = true;
  int queuesMade = 0;
  AudioStreamFormat format;
  FakeInputQueue* queue = nullptr;  // the one made last; its owner is who asked for it
};

struct FakeSession final : AudioSession {
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
  bool available() const override { return exists; }
  float outputVolume() const override { return volume; }

  bool exists = true;
  Error categoryError, activeError;
  float volume = 1;
  std::vector<std::string> calls;
};

struct FakePlayers final : AudioPlayers {
  struct Player final : AudioPlayer {
    explicit Player(int& counter) : count(counter) {}
    void play() override { ++count; }
    int& count;
  };
  std::unique_ptr<AudioPlayer> playerWithContentsOf(const std::string& path) override {
    paths.push_back(path);
    return missing ? nullptr : std::make_unique<Player>(plays);
  }
  bool missing = false;
  int plays = 0;
  std::vector<std::string> paths;
};

struct FakeOutput final : AudioOutput {
  struct Unit final : AudioOutputUnit {
    explicit Unit(FakeOutput& output) : owner(output), number(output.unitsMade) {}
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
    AudioStatus start() override {
      owner.started = number;
      return ++owner.starts, 0;
    }
    AudioStatus stop() override { return ++owner.stops, 0; }
    FakeOutput& owner;
    const int number;
  };
  std::unique_ptr<AudioOutputUnit> newOutputUnit() override {
    if (missing) return nullptr;
    ++unitsMade;
    return std::make_unique<Unit>(*this);
  }
  bool missing = false;
  int unitsMade = 0, started = 0, starts = 0, stops = 0;
  AudioStreamFormat format;
  AudioRenderCallback callback = nullptr;
  void* userData = nullptr;
};

struct FakeDevice final : Device {
  std::optional<int> userInterfaceIdiom() const override { return idiom; }
  double screenHeight() const override { return height; }
  std::string systemVersion() const override { return version; }
  void setIdleTimerDisabled(bool disabled) override { idleTimerDisabled = disabled; }

  std::optional<int> idiom = 0;
  double height = 844;
  std::string version = "12.0";
  bool idleTimerDisabled = false;
};

// A text is its key, in brackets unless it is in a table of its own.
struct FakeBundle final : Bundle {
  using Texts = std::map<std::string, std::string, std::less<>>;
  static std::optional<std::string> find(const Texts& texts, std::string_view key) {
    const auto found = texts.find(key);
    return found == texts.end() ? std::nullopt : std::optional(found->second);
  }
  std::string resourcePath() const override { return "/resources"; }
  std::string localizedString(std::string_view key, std::string_view /*value*/,
                              std::string_view table) const override {
    const std::string name(key);
    return find(texts, key).value_or(table.empty() ? "[" + name + "]" : name);
  }
  std::optional<std::string> infoValue(std::string_view key) const override {
    return find(info, key);
  }
  std::optional<std::string> localizedInfoValue(std::string_view key) const override {
    return find(localized, key);
  }
  Texts texts, info, localized;
};

struct FakeMicrophones final : Microphones {
  HearingTrouble trouble() const override { return now; }
  std::string nameInUse() const override { return inUse; }
  std::vector<Microphone> connected() const override {
    ++listings;
    return all;
  }
  std::uint64_t changes() const override { return changed; }
  void use(const std::string& id) override { used.push_back(id); }
  HearingTrouble now = HearingTrouble::None;
  std::string inUse = "Built-in";
  std::vector<Microphone> all = {{"in", "Built-in"}, {"usb", "Clip"}};
  std::vector<std::string> used;
  std::uint64_t changed = 0;
  mutable int listings = 0;  // how often the connected ones were asked for
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
  FakeMicrophones microphones;
  Platform platform{.audioInput = input,
                    .audioSession = session,
                    .audioPlayers = players,
                    .audioOutput = output,
                    .runLoop = runLoop,
                    .settings = settings,
                    .device = device,
                    .bundle = bundle,
                    .log = log,
                    .microphones = &microphones};
};

}  // namespace endpin::fakes
