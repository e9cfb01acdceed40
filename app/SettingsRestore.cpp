#include "app/SettingsRestore.h"

#include <fmt/format.h>

namespace endpin {
namespace {

// A stored switch counts when it is 0 or 1; anything else leaves flag and switch alone.
template <class Apply>
void ifSwitch(std::int64_t stored, Apply apply) {
  if (stored == 0 || stored == 1) apply(stored == 1);
}

}  // namespace

void loadSettings(SettingsStore& settings, Log& log, const RestoredState& state) {
  if (settings.boolForKey("NewFirstLaunchCello")) {
    restoreSettings(settings, log, state);
  } else {
    runFirstLaunch(settings, log, state);
  }
}

void writeFirstLaunchDefaults(SettingsStore& settings) {
  settings.removeAll();
  settings.setInteger("a4InHzSavedValue", 440);
  settings.setInteger("numberOfRuns", 1);
  settings.synchronize();
  settings.setInteger("SavedLanguage", 1);
  settings.setInteger("savedSliderValue", 5);
  settings.setBool("soundNotificationEnabled", true);
  settings.setBool("stringSoundsEnabled", false);
  settings.setBool("frequencyChartEnabled", true);
  settings.setInteger("numberOfRuns", 1);
  settings.setBool("NewFirstLaunchCello", true);  // last: a launch cut short before is a first one
  settings.synchronize();
}

void runFirstLaunch(SettingsStore& settings, Log& log, const RestoredState& state) {
  log.line(
      "Me abriste por primera vez, voy a borrar los defaults y guardar 440 en NSDictionary y como "
      "valores de a4InHz y globalFrequency");
  writeFirstLaunchDefaults(settings);
  state.calibration.resetToConcertPitch();
}

void restoreSettings(SettingsStore& settings, Log& log, const RestoredState& state) {
  TunedStringFeedback& feedback = state.feedback;
  const std::int64_t savedA4 = settings.integerForKey("a4InHzSavedValue");
  ifSwitch(settings.integerForKey("frequencyChartEnabled"),
           [&](bool on) { state.calibrationOutlets.freqChartSwitch.setOn(on); });
  ifSwitch(settings.integerForKey("soundNotificationEnabled"), [&](bool on) {
    feedback.soundNotificationOn = on;
    state.tunerOutlets.soundNotificationSwitch.setOn(on);
  });
  ifSwitch(settings.integerForKey("stringSoundsEnabled"), [&](bool on) {
    feedback.stringSoundsOn = on;
    state.tunerOutlets.stringSoundsSwitch.setOn(on);
  });
  // The tuning fork was in use when the application ended: no beep for now, whatever the switch
  // says.
  if (settings.integerForKey("currentlyUsingTuningFork") == 1) feedback.soundNotificationOn = false;

  state.sensitivity.restore(settings.doubleForKey("savedSliderValue"),
                            state.tunerOutlets.micSensitivitySlider);
  state.calibration.restore(savedA4);
  log.line(fmt::format("Current set frequency is:{}", state.calibration.a4InHz()));
  log.line(fmt::format("Current saved frequency is:{}", savedA4));
  log.line(fmt::format("Current A4 calibration is:{}", savedA4));

  settings.setInteger("numberOfRuns", countAfter(settings.integerForKey("numberOfRuns")));
  settings.synchronize();
}

}  // namespace endpin
