#include "cli/Session.h"

#include "app/SettingsRestore.h"

namespace endpin {

Session::Session(const Parts& parts)
    : players_(parts.players),
      bundle_({applicationResourcePath(), environmentLanguage(applicationResourcePath()),
               ENDPIN_VERSION},
              parts.log),
      platform_{.audioInput = parts.microphone,
                .audioSession = audioSession_,
                .audioPlayers = players_,
                .audioOutput = output_,
                .runLoop = parts.runLoop,
                .settings = parts.settings,
                .device = device_,
                .bundle = bundle_,
                .log = parts.log,
                .microphones = parts.microphones},
      application_(platform_),
      fine_(parts.fine) {}

void Session::start() {
  application_.launch();
  if (fine_) application_.controller().useFineHearing(true);
}

void saveEarlierRun(SettingsStore& settings, std::int64_t a4) {
  writeFirstLaunchDefaults(settings);
  settings.setInteger("a4InHzSavedValue", a4);
}

}  // namespace endpin
