// The elements of the screen that the tuner acts on, by the names that the layouts use.
// Thread: main.
#pragma once

#include "ports/Outlets.h"

namespace endpin {

struct TunerOutlets {
  Outlet<Label> freq_label;   // measured or snapped frequency
  Outlet<Label> noteDisplay;  // name of the string that was in tune last

  Outlet<ImageView> LEDDisplay;     // small lamp
  Outlet<ImageView> LEDDisplay128;  // large lamp

  Outlet<ImageView> ring1;  // A3
  Outlet<ImageView> ring2;  // D3
  Outlet<ImageView> ring3;  // G2
  Outlet<ImageView> ring4;  // C2

  Outlet<ImageView> tunedString;      // string picture of phones 480 points high
  Outlet<ImageView> tunedString5;     // of all other phones
  Outlet<ImageView> tunedStringiPad;  // of tablets

  Outlet<Slider> micSensitivitySlider;
  Outlet<Switch> soundNotificationSwitch;
  Outlet<Switch> stringSoundsSwitch;

  Outlet<Label> turnUpTheVolumeLabel;
  Outlet<Label> turnUpTheVolumeTriangleLabel;

  void setLamp(const char* small, const char* large) {
    LEDDisplay->setImage(small);
    LEDDisplay128->setImage(large);
  }
  void setTunedStringsHidden(bool hidden) {
    tunedString->setHidden(hidden);
    tunedString5->setHidden(hidden);
    tunedStringiPad->setHidden(hidden);
  }
};

}  // namespace endpin
