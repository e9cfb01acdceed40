// The life of the application on a desktop: its launch, its returns to the foreground, the user's
// wish for less motion, and the rating prompt, which counts them. Thread: main.
#pragma once

#include <optional>

#include "adapters/cli11/ProgramError.h"
#include "adapters/qt/ForegroundWatch.h"
#include "adapters/qt/LayoutWindow.h"
#include "adapters/qt/MotionPreference.h"
#include "app/Application.h"
#include "desktop/Rating.h"
#include "ports/Platform.h"

namespace endpin {

class Life {
 public:
  // Launches the application, which shows its screen in `window`; throws ProgramError when it
  // cannot. All outlive the life, which outlives the event loop.
  Life(Application& application, const Platform& platform, LayoutWindow& window)
      : motion_([&window](bool reduced) { window.setReducedMotion(reduced); }) {
    if (!window.isPicture()) rating_.emplace(platform, window.window());
    application.launch(window);
    if (!window.hasLayout()) throw ProgramError(kExitFailure, "the screen cannot be shown");
    watch_.emplace(window.window(), [&application] { application.enterForeground(); });
  }
  Life(const Life&) = delete;
  Life& operator=(const Life&) = delete;

 private:
  MotionPreference motion_;
  std::optional<Rating> rating_;          // none for a picture, which is no use of the application
  std::optional<ForegroundWatch> watch_;  // of a window that is shown
};

}  // namespace endpin
