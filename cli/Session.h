// The whole application in a terminal, over a given microphone, run loop and store: beeps counted,
// no tones. One at a time. Thread: main.
#pragma once

#include <cstdint>

#include "adapters/bundle/FileBundle.h"
#include "adapters/offline/CountingPlayers.h"
#include "adapters/offline/FixedDevice.h"
#include "adapters/offline/SilentOutput.h"
#include "app/Application.h"

namespace endpin {

class Session {
 public:
  struct Parts {
    AudioInput& microphone;
    RunLoop& runLoop;
    SettingsStore& settings;
    Log& log;
    Microphones* microphones = nullptr;  // none: nothing is known of them
    bool fine = false;                   // fine hearing, whatever the settings say
    AudioPlayers* players = nullptr;     // what the beep sounds through; none: it does not
  };

  // What `parts` refers to outlives the session.
  explicit Session(const Parts& parts);

  // The screen loads and appears: listening and ticks begin.
  void start();

  [[nodiscard]] const ViewController& controller() const { return application_.controller(); }
  [[nodiscard]] std::uint64_t beeps() const { return players_.plays(); }

 private:
  OfflineSession audioSession_;
  CountingPlayers players_;
  SilentOutput output_;
  FixedDevice device_;
  FileBundle bundle_;
  Platform platform_;
  Application application_;
  const bool fine_;
};

// Fills an empty store as an earlier run with this calibration (whole hertz) has left it.
void saveEarlierRun(SettingsStore& settings, std::int64_t a4);

}  // namespace endpin
