#include "calibration/TemperamentName.h"

#include <cstddef>

namespace endpin {

int temperamentOfStepper(double a4InHz) {
  for (std::size_t index = 1; index < kTemperaments.size(); ++index) {
    const std::int64_t named = kTemperaments[index].a4InHz;
    if (named != 0 && static_cast<double>(named) == a4InHz) return static_cast<int>(index);
  }
  return 0;
}

int temperamentOfRestored(std::int64_t a4InHz) {
  const int index = temperamentOfStepper(static_cast<double>(a4InHz));
  return kTemperaments[static_cast<std::size_t>(index)].restored ? index : 0;
}

void displayTemperamentName(int temperamentIndex, const Bundle& bundle, Label& label) {
  if (temperamentIndex >= static_cast<int>(kTemperaments.size())) return;
  if (temperamentIndex == 0) {
    label.setText("");
    return;
  }
  const char* key = kTemperaments[static_cast<std::size_t>(temperamentIndex)].key;
  label.setText(bundle.localizedString(key, "", ""));
}

}  // namespace endpin
