// The whole application of the virtual day: screen, listener, tuning fork and rating prompt on
// platforms in memory, all on one virtual clock. One at a time. Thread: main.
#pragma once

#include <array>
#include <memory>
#include <utility>
#include <vector>

#include "adapters/bundle/FileBundle.h"
#include "adapters/capture/CaptureQueue.h"
#include "adapters/log/NullLog.h"
#include "adapters/offline/CountingPlayers.h"
#include "adapters/offline/FixedDevice.h"
#include "adapters/offline/MemoryStore.h"
#include "adapters/offline/OfflineSession.h"
#include "adapters/offline/VirtualRunLoop.h"
#include "app/AppDelegate.h"
#include "app/ViewController.h"
#include "audio/LumoListener.h"
#include "cli/TerminalScreen.h"
#include "ports/Screen.h"
#include "tests/rating/FakeRatingPlatform.h"
#include "tests/soak/Cellist.h"

namespace endpin::soak {

struct CountedRunLoop : VirtualRunLoop {
  TimerId scheduleTimer(double seconds, Call fire) override {
    ++timers;
    return VirtualRunLoop::scheduleTimer(seconds, std::move(fire));
  }
  void performAfterDelay(double seconds, Call call) override {
    mostPending = std::max(mostPending, ++pending);
    VirtualRunLoop::performAfterDelay(seconds, [this, call = std::move(call)] {
      --pending;
      call();
    });
  }
  int timers = 0;
  int pending = 0;
  int mostPending = 0;
};

struct PlayedMicrophone : AudioInput {
  std::unique_ptr<AudioInputQueue> newInput(const AudioStreamFormat& /*format*/,
                                            AudioInputCallback callback, void* userData) override {
    auto made = std::make_unique<CaptureQueue>(callback, userData);
    queue = made.get();
    return made;
  }
  CaptureQueue* queue = nullptr;
};

// An output that is pulled by hand, so that the tone is really made.
struct PulledOutput : AudioOutput {
  struct Unit : AudioOutputUnit {
    explicit Unit(PulledOutput& owner) : output(owner) {}
    AudioStatus setStreamFormat(const AudioStreamFormat& /*format*/) override { return 0; }
    AudioStatus setRenderCallback(AudioRenderCallback callback, void* userData) override {
      output.render = [=](AudioOutputBuffer buffer, std::uint32_t frames) {
        callback(userData, frames, {&buffer, 1});
      };
      return 0;
    }
    AudioStatus initialize() override { return 0; }
    AudioStatus start() override { return output.running = true, 0; }
    AudioStatus stop() override { return output.running = false, 0; }
    PulledOutput& output;
  };

  std::unique_ptr<AudioOutputUnit> newOutputUnit() override {
    ++units;
    return std::make_unique<Unit>(*this);
  }
  // Whether a hundredth of a second of what sounds is loud anywhere.
  [[nodiscard]] bool sounds() const {
    if (!running) return false;
    std::array<std::uint32_t, 441> frames{};
    render({frames.data()}, static_cast<std::uint32_t>(frames.size()));
    return std::any_of(frames.begin(), frames.end(), [](std::uint32_t frame) {
      return static_cast<std::int16_t>(frame & 0xFFFFU) > 3276;
    });
  }
  std::function<void(AudioOutputBuffer, std::uint32_t)> render;
  bool running = false;
  int units = 0;
};

class DayWorld : private Screen {
 public:
  // The application as it is at its tenth launch: everything is saved, and the rating prompt asks.
  DayWorld() {
    settings.setInteger("numberOfRuns", 9);
    settings.setInteger("savedSliderValue", 5);
    settings.setBool("soundNotificationEnabled", true);
    settings.setBool("frequencyChartEnabled", true);
    settings.setInteger("a4InHzSavedValue", 440);
    settings.setBool("NewFirstLaunchCello", true);
    screen.connect(controller);
    RatingPrompt::usePlatform({.clock = rating,
                               .workQueues = rating,
                               .mainQueue = runLoop,
                               .settings = settings,
                               .reachability = rating,
                               .probes = rating,
                               .mainBundle = bundle,
                               .log = log,
                               .device = device,
                               .notifications = rating,
                               .resourceBundles = rating,
                               .windows = rating,
                               .urlOpener = rating,
                               .modernAlerts = &rating});
    delegate_.applicationDidFinishLaunching();
  }
  ~DayWorld() override { LumoListener::releaseSharedListener(); }
  DayWorld(const DayWorld&) = delete;

  [[nodiscard]] double now() const { return static_cast<double>(ticks) / 10; }  // seconds

  // Plays and runs the next tenth of a second with its tick.
  void tick() {
    ++ticks;
    const auto due = ticks * kCaptureRateDoubled / 20;
    captured_.resize(static_cast<std::size_t>(due - std::exchange(samples_, due)));
    cellist.fill(captured_);
    microphone.queue->deliver(captured_);
    runLoop.runUntil(now());
    rating.advance(0.1);
  }

  void leaveAndReturn() {
    if (rating.resign) rating.resign();
    delegate_.applicationWillResignActive();
    delegate_.applicationDidEnterBackground();
    delegate_.applicationWillEnterForeground();
    delegate_.applicationDidBecomeActive();
  }

  // Puts the rating alert off, if it is there.
  void answer() {
    if (!rating.alert || !rating.alert->onScreen) return;
    rating.alert->press(1);
    rating.alert.reset();
    rating.root.presented.reset();
  }

  struct Session : OfflineSession {
    [[nodiscard]] float outputVolume() const override { return volume; }
    float volume = 1;
  };

  NullLog log;
  CountedRunLoop runLoop;
  Cellist cellist;
  PlayedMicrophone microphone;
  Session session;
  CountingPlayers players;
  PulledOutput output;
  MemoryStore settings;
  FixedDevice device;
  FileBundle bundle{{ENDPIN_RESOURCES, "en", "1.0"}, log};
  Platform platform{microphone, session, players, output, runLoop, settings, device, bundle, log};
  TerminalScreen screen;
  ViewController controller{platform, false};
  fakes::FakeRatingPlatform rating;  // its clock, network and window
  std::uint64_t ticks = 0;

 private:
  void installLayout(const std::string& /*name*/) override {
    controller.viewDidLoad();
    controller.viewWillAppear(false);
  }
  [[nodiscard]] bool asksForStatusBar() const override { return true; }
  void setNeedsStatusBarAppearanceUpdate(bool /*hidden*/) override {}
  void setStatusBarHidden(bool /*hidden*/, int /*animation*/) override {}

  AppDelegate delegate_{{device, *this, log}};
  std::vector<std::int16_t> captured_;
  std::uint64_t samples_ = 0;
};

}  // namespace endpin::soak
