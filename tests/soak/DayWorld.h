// The whole application of the virtual day: screen, listener, tuning fork and rating prompt on
// platforms in memory, all on one virtual clock. One at a time. Thread: main.
#pragma once

#include <algorithm>
#include <array>
#include <functional>
#include <memory>
#include <span>
#include <utility>
#include <vector>

#include "adapters/bundle/FileBundle.h"
#include "adapters/log/Logs.h"
#include "adapters/offline/CountingPlayers.h"
#include "adapters/offline/FixedDevice.h"
#include "adapters/offline/MemoryStore.h"
#include "adapters/offline/SilentOutput.h"
#include "adapters/offline/VirtualRunLoop.h"
#include "app/Application.h"
#include "audio/CaptureFormat.h"
#include "audio/CaptureQueue.h"
#include "ports/Screen.h"
#include "tests/rating/FakeRatingPlatform.h"

namespace endpin::soak {

struct CountedRunLoop : VirtualRunLoop {
  TimerId scheduleTimer(double seconds, Call fire) override {
    ++timers;
    return VirtualRunLoop::scheduleTimer(seconds, std::move(fire));
  }
  void performAfterDelay(double seconds, Call call) override {
    ++pending;
    VirtualRunLoop::performAfterDelay(seconds, [this, call = std::move(call)] {
      --pending;
      call();
    });
  }
  int timers = 0;
  int pending = 0;
};

class DayWorld : AudioInput, AudioOutput, OfflineSession, Screen {
 public:
  // The application as it is at its tenth launch: everything is saved, and the rating prompt asks.
  DayWorld() {
    settings_.setInteger("numberOfRuns", 9);
    settings_.setBool("soundNotificationEnabled", true);
    settings_.setInteger("a4InHzSavedValue", 440);
    settings_.setBool("NewFirstLaunchCello", true);
    rating.use(fakes::FakeRatingPlatform::kModern);
    rating.root.manners = &manners_;
    application_.launch(*this);
  }
  DayWorld(const DayWorld&) = delete;

  [[nodiscard]] double now() const { return static_cast<double>(ticks) / 10; }  // seconds

  // Plays and runs the next tenth of a second with its tick.
  void tick() {
    const auto due = ++ticks * kCaptureRateDoubled / 20;
    std::vector<std::int16_t> captured(due - std::exchange(samples_, due));
    const auto part = toPlay.first(std::min(toPlay.size(), captured.size()));
    std::copy(part.begin(), part.end(), captured.begin());
    toPlay = toPlay.subspan(part.size());
    microphone->deliver(captured);
    runLoop.runUntil(now());
    rating.advance(0.1);
    silentTicks = controller.stringSounds() ? 0 : silentTicks + 1;
    const bool asks = rating.alert && rating.alert->onScreen;
    if (asks && !std::exchange(asking_, asks)) askedAfter.push_back(silentTicks);
    asking_ = asks;
    rating.log.lines.clear();
    rating.store.writes.clear();
  }

  void leaveAndReturn() {
    if (rating.resign) rating.resign();
    application_.enterForeground();
  }

  // Puts the rating alert off, if it is there.
  void answer() {
    if (!rating.alert || !rating.alert->onScreen) return;
    rating.alert->press(1);
    rating.alert.reset();
    rating.root.presented.reset();
  }

  // Whether the tuning fork is loud anywhere in the next hundredth of a second.
  [[nodiscard]] bool forkSounds() const {
    std::array<std::uint32_t, 441> frames{};
    pull_({frames.data()}, static_cast<std::uint32_t>(frames.size()));
    return std::any_of(frames.begin(), frames.end(), [](std::uint32_t frame) {
      return static_cast<std::int16_t>(frame & 0xFFFFU) > 3276;
    });
  }

  std::span<const std::int16_t> toPlay;  // silence follows
  CaptureQueue* microphone = nullptr;    // the listener's
  float volume = 1;
  bool forkRuns = false;
  int forks = 0;
  std::uint64_t ticks = 0;
  int silentTicks = 0;          // until now
  std::vector<int> askedAfter;  // so many silent ticks, each time the rating dialog appeared
  CountedRunLoop runLoop;
  CountingPlayers players;
  fakes::FakeRatingPlatform rating;

 private:
  struct Fork : AudioOutputUnit {
    explicit Fork(DayWorld& owner) : world(owner) {}
    AudioStatus setStreamFormat(const AudioStreamFormat& /*format*/) override { return 0; }
    AudioStatus setRenderCallback(AudioRenderCallback callback, void* userData) override {
      world.pull_ = [=](AudioOutputBuffer buffer, std::uint32_t frames) {
        callback(userData, frames, {&buffer, 1});
      };
      return 0;
    }
    AudioStatus initialize() override { return 0; }
    AudioStatus start() override { return world.forkRuns = true, 0; }
    AudioStatus stop() override { return world.forkRuns = false, 0; }
    DayWorld& world;
  };

  std::unique_ptr<AudioInputQueue> newInput(const AudioStreamFormat& /*format*/,
                                            AudioInputCallback callback, void* userData) override {
    auto queue = std::make_unique<CaptureQueue>(callback, userData);
    microphone = queue.get();
    return queue;
  }
  std::unique_ptr<AudioOutputUnit> newOutputUnit() override {
    ++forks;
    return std::make_unique<Fork>(*this);
  }
  [[nodiscard]] float outputVolume() const override { return volume; }
  void installLayout(const std::string& /*name*/) override {
    controller.viewDidLoad();
    controller.viewWillAppear(false);
  }
  [[nodiscard]] bool asksForStatusBar() const override { return true; }
  void setNeedsStatusBarAppearanceUpdate(bool /*hidden*/) override {}
  void setStatusBarHidden(bool /*hidden*/, int /*animation*/) override {}

  NullLog log_;
  MemoryStore settings_;
  FixedDevice device_;
  FileBundle bundle_{{ENDPIN_RESOURCES, "en", "1.0"}, log_};
  Platform platform_{*this, *this, players, *this, runLoop, settings_, device_, bundle_, log_};
  std::function<void(AudioOutputBuffer, std::uint32_t)> pull_;
  std::uint64_t samples_ = 0;
  bool asking_ = false;
  RatingManners manners_{
      {.runLoop = runLoop, .clock = rating, .settings = rating.store, .stringSounds = [this] {
         return controller.stringSounds();
       }}};
  Application application_{platform_, false};

 public:
  ViewController& controller = application_.controller();
};

}  // namespace endpin::soak
