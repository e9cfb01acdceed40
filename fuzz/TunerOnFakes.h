// The whole tuner on a platform in memory, over a store of the fuzzer's choice. One at a time.
#pragma once

#include "app/Application.h"
#include "tests/fakes/FakePlatform.h"

namespace endpin::fuzzing {

struct NoTimers final : VirtualRunLoop {
  TimerId scheduleTimer(double /*seconds*/, Call /*fire*/) override { return 1; }
};

struct TunerOnFakes {
  // Starts it. Nothing runs by itself: the fuzzer calls the ticks, and runLoop.advance what was
  // delayed. `settings` outlives the tuner.
  explicit TunerOnFakes(SettingsStore& settings)
      : platform{fake.input, fake.session, fake.players, fake.output, runLoop,
                 settings,   fake.device,  fake.bundle,  fake.log},
        application(platform) {
    application.launch();
  }
  TunerOnFakes(const TunerOnFakes&) = delete;
  TunerOnFakes& operator=(const TunerOnFakes&) = delete;

  fakes::FakePlatform fake;
  NoTimers runLoop;
  Platform platform;
  Application application;
  ViewController& controller = application.controller();
};

}  // namespace endpin::fuzzing
