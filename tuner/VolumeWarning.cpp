#include "tuner/VolumeWarning.h"

namespace endpin {
namespace {

constexpr float kLowVolume = 0.5F;
constexpr ViewAnimation kBlink = {
    .duration = 0.25, .delay = 0, .repeat = true, .autoreverse = true, .targetAlpha = 0.0};

}  // namespace

// The blinking is started again at every check; only the text starts from full strength.
void showVolumeWarning(float outputVolume, TunerOutlets& outlets) {
  const bool low = outputVolume < kLowVolume;
  outlets.turnUpTheVolumeLabel.setHidden(!low);
  outlets.turnUpTheVolumeTriangleLabel.setHidden(!low);
  if (!low) return;
  outlets.turnUpTheVolumeLabel.setAlpha(1.0);
  outlets.turnUpTheVolumeLabel.animate(kBlink);
  outlets.turnUpTheVolumeTriangleLabel.animate(kBlink);
}

}  // namespace endpin
