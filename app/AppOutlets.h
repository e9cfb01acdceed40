// The captions and texts of the screen, by the names that the layouts use. Thread: main.
#pragma once

#include "ports/Outlets.h"

namespace endpin {

struct AppOutlets {
  Outlet<Label> calibrationLabel;
  Outlet<Label> hZLabel;
  Outlet<Label> micSensitivityLabel;
  Outlet<Label> soundNotificationLabel;
  Outlet<Label> stringSoundsLabel;
  Outlet<Label> frequencyChartLabel;

  Outlet<Label> aboutMsg2;
  Outlet<Label> aboutCongratsMessage;

  Outlet<PickerView> establecerIdioma;  // inert: texts follow the platform's language
};

}  // namespace endpin
