// The elements of the screen that calibration, chart and tuning fork act on, by the names that the
// layouts use. Thread: main.
#pragma once

#include "ports/Outlets.h"

namespace endpin {

struct CalibrationOutlets {
  Outlet<Button> setA392btn;
  Outlet<Button> setA415btn;
  Outlet<Button> setA432btn;
  Outlet<Button> setA440btn;
  Outlet<Button> setA441btn;
  Outlet<Button> setA442btn;
  Outlet<Button> setA443btn;
  Outlet<Button> setA444btn;
  Outlet<Button> setA466btn;

  Outlet<Label> calibrationFrequencyValue;  // A4 in whole hertz
  Outlet<Stepper> setFrequencyValueStepper;
  Outlet<Label> currentTemperamentName;

  Outlet<ImageView> chartDisplay;
  Outlet<Label> firstStringFreq;  // chart labels, not numbers
  Outlet<Label> secondStringFreq;
  Outlet<Label> thirdStringFreq;
  Outlet<Label> fourthStringFreq;
  Outlet<Switch> freqChartSwitch;

  Outlet<Button> a3TFButton;  // tuning fork
  Outlet<Button> d3TFButton;
  Outlet<Button> g2TFButton;
  Outlet<Button> c2TFButton;
  Outlet<Label> tfnoteDisplay;
  Outlet<Label> tfFreqLabel;
  Outlet<Button> tuningForkButton;    // leads to the tuning fork
  Outlet<Button> goToSettingsButton;  // leads to the settings
};

}  // namespace endpin
