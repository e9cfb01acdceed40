// The whole tuner on a platform in memory, over a store of the fuzzer's choice. One at a time.
#pragma once

#include "audio/LumoListener.h"
#include "cli/TerminalScreen.h"
#include "tests/fakes/FakePlatform.h"

namespace endpin::fuzzing {

struct TunerOnFakes {
  // Starts it. Nothing runs by itself: the fuzzer calls the ticks, and runLoop.advance what was
  // delayed. `settings` outlives the tuner.
  explicit TunerOnFakes(SettingsStore& settings)
      : platform{fake.input, fake.session, fake.players, fake.output, fake.runLoop,
                 settings,   fake.device,  fake.bundle,  fake.log},
        controller(platform) {
    screen.connect(controller);
    controller.viewDidLoad();
    controller.viewWillAppear(false);
    fake.runLoop.timers.clear();
  }
  ~TunerOnFakes() { LumoListener::releaseSharedListener(); }
  TunerOnFakes(const TunerOnFakes&) = delete;
  TunerOnFakes& operator=(const TunerOnFakes&) = delete;

  fakes::FakePlatform fake;
  Platform platform;
  TerminalScreen screen;
  ViewController controller;
};

}  // namespace endpin::fuzzing
