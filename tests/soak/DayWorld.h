// The whole application of the virtual day: screen, listener, tuning fork and rating prompt on
// platforms in memory, all on one virtual clock. One at a time. Thread: main.
#pragma once

#include <memory>

#include "adapters/bundle/FileBundle.h"
#include "adapters/log/NullLog.h"
#include "adapters/offline/CountingPlayers.h"
#include "adapters/offline/FixedDevice.h"
#include "adapters/offline/MemoryStore.h"
#include "adapters/offline/OfflineSession.h"
#include "app/AppDelegate.h"
#include "app/ViewController.h"
#include "cli/TerminalScreen.h"
#include "ports/Screen.h"
#include "tests/rating/FakeRatingPlatform.h"
#include "tests/soak/CountedRunLoop.h"
#include "tests/soak/PlayedMicrophone.h"
#include "tests/soak/PulledOutput.h"

namespace endpin::soak {

class DayWorld : private Screen {
 public:
  // The application as it is at its tenth launch: everything is saved, and the rating prompt asks.
  DayWorld();
  ~DayWorld() override;
  DayWorld(const DayWorld&) = delete;

  // Runs the next tenth of a second with its tick.
  void tick();

  // The user: away and back, and an answer to the rating alert, if it is there (0 rates, 1 waits).
  void leaveAndReturn();
  void answer(std::size_t button);

  struct Session : OfflineSession {
    [[nodiscard]] float outputVolume() const override { return volume; }
    float volume = 1;
  };

  NullLog log;
  CountedRunLoop runLoop;
  Cellist cellist;
  PlayedMicrophone microphone{cellist, runLoop};
  Session session;
  CountingPlayers players;
  PulledOutput output;
  MemoryStore settings;
  FixedDevice device;
  FileBundle bundle;
  Platform platform{microphone, session, players, output, runLoop, settings, device, bundle, log};
  TerminalScreen screen;
  ViewController controller{platform, false};
  fakes::FakeRatingPlatform rating;  // its clock, network and window
  std::uint64_t ticks = 0;

 private:
  void installLayout(const std::string& name) override;
  [[nodiscard]] bool asksForStatusBar() const override { return true; }
  void setNeedsStatusBarAppearanceUpdate(bool /*hidden*/) override {}
  void setStatusBarHidden(bool /*hidden*/, int /*animation*/) override {}

  AppDelegate delegate_{{device, *this, log}};
};

}  // namespace endpin::soak
