// The captions and texts of the screen, by the names that the layouts use, and how they are filled
// from the text tables, anew at each call. Thread: main.
#pragma once

#include "ports/Bundle.h"
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

void localizeSettings(const Bundle& bundle, AppOutlets& outlets);
void displayAboutText(const Bundle& bundle, AppOutlets& outlets);

}  // namespace endpin
