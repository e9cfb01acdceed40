#include "app/Localisation.h"

#include <array>
#include <span>

namespace endpin {
namespace {

struct TextRow {
  const char* key;
  Label AppOutlets::*label;
};

constexpr std::array<TextRow, 6> kSettingsCaptions = {{
    {"CalibrationTitle", &AppOutlets::calibrationLabel},
    {"HzTitle", &AppOutlets::hZLabel},
    {"MicSensitivityTitle", &AppOutlets::micSensitivityLabel},
    {"SoundNotificationTitle", &AppOutlets::soundNotificationLabel},
    {"StringSoundsTitle", &AppOutlets::stringSoundsLabel},
    {"FrequencyChartTitle", &AppOutlets::frequencyChartLabel},
}};

constexpr std::array<TextRow, 2> kAboutTexts = {{
    {"TunerAboutMsg2", &AppOutlets::aboutMsg2},
    {"TunerAboutCongratsMessage", &AppOutlets::aboutCongratsMessage},
}};

void fill(std::span<const TextRow> rows, const Bundle& bundle, AppOutlets& outlets) {
  for (const TextRow& row : rows) {
    (outlets.*row.label).setText(bundle.localizedString(row.key, "", ""));
  }
}

}  // namespace

void localizeSettings(const Bundle& bundle, AppOutlets& outlets) {
  fill(kSettingsCaptions, bundle, outlets);
}

void displayAboutText(const Bundle& bundle, AppOutlets& outlets) {
  fill(kAboutTexts, bundle, outlets);
}

}  // namespace endpin
