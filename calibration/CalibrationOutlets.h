// The elements of the screen that calibration, chart and tuning fork act on, by the names that the
// layouts use, in the state that they start in. Thread: main.
#pragma once

#include "ports/Outlets.h"

namespace endpin {

struct CalibrationOutlets {
  Button setA392btn;
  Button setA415btn;
  Button setA432btn;
  Button setA440btn;
  Button setA441btn;
  Button setA442btn;
  Button setA443btn;
  Button setA444btn;
  Button setA466btn;

  Label calibrationFrequencyValue{"440"};  // A4 in whole hertz
  Stepper setFrequencyValueStepper{440};
  Label currentTemperamentName;

  ImageView chartDisplay;
  Label firstStringFreq;  // chart labels, not numbers
  Label secondStringFreq;
  Label thirdStringFreq;
  Label fourthStringFreq;
  Switch freqChartSwitch{true};

  Button a3TFButton;  // tuning fork
  Button d3TFButton;
  Button g2TFButton;
  Button c2TFButton;
  Button stopTFButton{false};  // while a tone sounds
  Label tfnoteDisplay;
  Label tfFreqLabel;
  Button tuningForkButton;    // leads to the tuning fork
  Button goToSettingsButton;  // leads to the settings
};

}  // namespace endpin
