// The whole application without a window, over a given microphone and run loop: settings in memory,
// beeps counted, no other sound out. One at a time. Thread: main.
#pragma once

#include <cstdint>
#include <optional>

#include "adapters/bundle/FileBundle.h"
#include "adapters/offline/CountingPlayers.h"
#include "adapters/offline/FixedDevice.h"
#include "adapters/offline/MemoryStore.h"
#include "adapters/offline/OfflineSession.h"
#include "adapters/offline/SilentOutput.h"
#include "app/ViewController.h"
#include "cli/TerminalScreen.h"
#include "ports/Platform.h"

namespace endpin {

class Session {
 public:
  struct Parts {
    AudioInput& microphone;
    RunLoop& runLoop;
    Log& log;
    std::optional<std::int64_t> a4;   // hertz, as saved in an earlier run; none: a first launch
    AudioPlayers* players = nullptr;  // what the beep sounds through; none: it does not
  };

  // What `parts` refers to outlives the session.
  explicit Session(const Parts& parts);
  // The listener ends here; the run loop must not run any more.
  ~Session();
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  // The screen loads and appears: listening and ticks begin.
  void start();

  [[nodiscard]] const TerminalScreen& screen() const { return screen_; }
  [[nodiscard]] const ViewController& controller() const { return controller_; }
  [[nodiscard]] std::uint64_t beeps() const { return players_.plays(); }

 private:
  MemoryStore settings_;
  OfflineSession audioSession_;
  CountingPlayers players_;
  SilentOutput output_;
  FixedDevice device_;
  FileBundle bundle_;
  Platform platform_;
  TerminalScreen screen_;
  ViewController controller_;
};

}  // namespace endpin
