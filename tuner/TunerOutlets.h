// The elements of the screen that the tuner acts on, by the names that the layouts use, in the
// state that they start in. Thread: main.
#pragma once

#include "ports/Outlets.h"

namespace endpin {

inline constexpr float kLowVolume = 0.5F;  // of what the user hears, 0 to 1
inline constexpr ViewAnimation kVolumeBlink = {
    .duration = 0.25, .delay = 0, .repeat = true, .autoreverse = true, .targetAlpha = 0.0};

struct TunerOutlets {
  Label freq_label;   // measured or snapped frequency
  Label noteDisplay;  // name of the string that was in tune last

  ImageView LEDDisplay{"yellow64.png"};      // small lamp
  ImageView LEDDisplay128{"yellow128.png"};  // large lamp

  ImageView ring1;  // A3
  ImageView ring2;  // D3
  ImageView ring3;  // G2
  ImageView ring4;  // C2

  ImageView tunedString{"", true};      // string picture of phones 480 points high
  ImageView tunedString5{"", true};     // of all other phones
  ImageView tunedStringiPad{"", true};  // of tablets

  Slider micSensitivitySlider{5};
  Switch soundNotificationSwitch{true};
  Switch stringSoundsSwitch;

  Label turnUpTheVolumeLabel{"", true};
  Label turnUpTheVolumeTriangleLabel{"", true};

  // Of string `number`, 1 to 4.
  [[nodiscard]] ImageView& ring(int number) {
    ImageView* const rings[] = {&ring1, &ring2, &ring3, &ring4};
    return *rings[number - 1];
  }
  void setLamp(const char* small, const char* large) {
    LEDDisplay.setImage(small);
    LEDDisplay128.setImage(large);
  }
  void setTunedStringsHidden(bool hidden) {
    tunedString.setHidden(hidden);
    tunedString5.setHidden(hidden);
    tunedStringiPad.setHidden(hidden);
  }
  // Warns, blinking, while the volume is low: the player would not hear the beep or the tuning
  // fork. The blinking is started again at every check; only the text starts from full strength.
  void showVolumeWarning(float outputVolume) {
    const bool low = outputVolume < kLowVolume;
    turnUpTheVolumeLabel.setHidden(!low);
    turnUpTheVolumeTriangleLabel.setHidden(!low);
    if (!low) return;
    turnUpTheVolumeLabel.setAlpha(1.0);
    turnUpTheVolumeLabel.animate(kVolumeBlink);
    turnUpTheVolumeTriangleLabel.animate(kVolumeBlink);
  }
};

}  // namespace endpin
