#include "cli/Session.h"

#include "audio/LumoListener.h"

namespace endpin {
namespace {

// Fills the store as an earlier run with this calibration has left it.
void saveEarlierRun(SettingsStore& settings, std::int64_t a4) {
  settings.setInteger("numberOfRuns", 1);
  settings.setInteger("SavedLanguage", 1);
  settings.setInteger("savedSliderValue", 5);
  settings.setBool("soundNotificationEnabled", true);
  settings.setBool("stringSoundsEnabled", false);
  settings.setBool("frequencyChartEnabled", true);
  settings.setInteger("a4InHzSavedValue", a4);
  settings.setBool("NewFirstLaunchCello", true);
}

}  // namespace

Session::Session(const Parts& parts)
    : players_(parts.players),
      bundle_({applicationResourcePath(), environmentLanguage(), ENDPIN_VERSION}, parts.log),
      platform_{parts.microphone, audioSession_, players_, output_,  parts.runLoop,
                settings_,        device_,       bundle_,  parts.log},
      controller_(platform_) {
  if (parts.a4) saveEarlierRun(settings_, *parts.a4);
  screen_.connect(controller_);
}

Session::~Session() {
  LumoListener::releaseSharedListener();
}

void Session::start() {
  controller_.viewDidLoad();
  controller_.viewWillAppear(false);
}

}  // namespace endpin
