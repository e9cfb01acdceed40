// Everything the core asks of a platform. To bring Endpin to a new platform is to fill this struct
// and nothing else. `main` fills it; the adapters it points to outlive the application.
#pragma once

#include "ports/AudioInput.h"
#include "ports/AudioOutput.h"
#include "ports/AudioPlayer.h"
#include "ports/AudioSession.h"
#include "ports/Bundle.h"
#include "ports/Device.h"
#include "ports/Log.h"
#include "ports/Microphones.h"
#include "ports/RunLoop.h"
#include "ports/SettingsStore.h"

namespace endpin {

struct Platform {
  AudioInput& audioInput;
  AudioSession& audioSession;
  AudioPlayers& audioPlayers;
  AudioOutput& audioOutput;
  RunLoop& runLoop;
  SettingsStore& settings;
  Device& device;
  Bundle& bundle;
  Log& log;

  Microphones* microphones = nullptr;  // none: the platform cannot tell of them
};

}  // namespace endpin
