// Warns, blinking, while the playback volume is below one half: the player would not hear the beep
// or the tuning fork. Called twice a second by the screen controller. Thread: main.
#pragma once

#include "tuner/TunerOutlets.h"

namespace endpin {

// `outputVolume` is the volume of what the user hears, 0 to 1.
void showVolumeWarning(float outputVolume, TunerOutlets& outlets);

}  // namespace endpin
