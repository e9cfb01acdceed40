// What the main screen takes from the settings store when it appears: the defaults at the very
// first launch, what was saved at every later one. Called by the screen controller. Thread: main.
#pragma once

#include "calibration/Calibration.h"
#include "calibration/CalibrationOutlets.h"
#include "ports/Log.h"
#include "ports/SettingsStore.h"
#include "tuner/Sensitivity.h"
#include "tuner/TunedStringFeedback.h"
#include "tuner/TunerOutlets.h"

namespace endpin {

// The state that the settings go to. Everything outlives the call.
struct RestoredState {
  TunerOutlets& tunerOutlets;
  CalibrationOutlets& calibrationOutlets;
  Sensitivity& sensitivity;
  TunedStringFeedback& feedback;
  Calibration& calibration;
};

// Runs whichever of the two sequences is due.
void loadSettings(SettingsStore& settings, Log& log, const RestoredState& state);

// Clears the whole store and writes what the first launch leaves in it.
void writeFirstLaunchDefaults(SettingsStore& settings);

// Clears the whole store and writes the defaults. Switches, slider, stepper and label keep what the
// layout shows, and the beep stays off until the next launch.
void runFirstLaunch(SettingsStore& settings, Log& log, const RestoredState& state);

// Restores switches, slider, stepper and calibration. The thresholds of the sensitivity and the
// chart stay as they are: they follow their controls only.
void restoreSettings(SettingsStore& settings, Log& log, const RestoredState& state);

}  // namespace endpin
