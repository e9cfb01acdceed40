// The captions and texts of the screen, by the names that the layouts use. Thread: main.
#pragma once

#include "ports/Outlets.h"

namespace endpin {

struct AppOutlets {
  Label calibrationLabel;
  Label hZLabel;
  Label micSensitivityLabel;
  Label soundNotificationLabel;
  Label stringSoundsLabel;
  Label frequencyChartLabel;

  Label aboutMsg2;
  Label aboutCongratsMessage;

  PickerView establecerIdioma;  // inert: texts follow the platform's language
};

}  // namespace endpin
