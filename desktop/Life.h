// The life of the application on a desktop: its launch, its returns to the foreground, the user's
// wish for less motion, and the rating prompt, which counts them. Thread: main.
#pragma once

#include <optional>

#include "adapters/cli11/ProgramError.h"
#include "adapters/qt/ForegroundWatch.h"
#include "adapters/qt/LayoutWindow.h"
#include "adapters/qt/MotionPreference.h"
#include "app/AppDelegate.h"
#include "desktop/Rating.h"
#include "ports/Platform.h"

namespace endpin {

class Life {
 public:
  // Launches the application, which shows its screen in `window`; throws ProgramError when it
  // cannot. Both outlive the life, which outlives the event loop.
  Life(const Platform& platform, LayoutWindow& window)
      : motion_([&window](bool reduced) { window.setReducedMotion(reduced); }),
        delegate_({platform.device, window, platform.log}) {
    if (!window.isPicture()) rating_.emplace(platform, window.window());
    delegate_.applicationDidFinishLaunching();
    if (!window.hasLayout()) throw ProgramError(kExitFailure, "the screen cannot be shown");
    watch_.emplace(window.window(), [this] { delegate_.applicationWillEnterForeground(); });
  }
  Life(const Life&) = delete;
  Life& operator=(const Life&) = delete;

 private:
  MotionPreference motion_;
  std::optional<Rating> rating_;  // none for a picture, which is no use of the application
  AppDelegate delegate_;
  std::optional<ForegroundWatch> watch_;  // of a window that is shown
};

}  // namespace endpin
