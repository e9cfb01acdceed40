// The life of the application on a desktop or a phone: its launch, its returns to the foreground,
// the user's wish for less motion, and the rating prompt, which counts them, with all that it asks
// of the platform. Thread: main.
#pragma once

#include <optional>

#include "adapters/posix/SystemServices.h"
#include "adapters/qt/ApplicationWatch.h"
#include "adapters/qt/LayoutWindow.h"
#include "adapters/qt/MotionPreference.h"
#include "adapters/qt/RatingScreen.h"
#include "app/Application.h"
#include "ports/Platform.h"

namespace endpin {

class AppLifecycle {
 public:
  // The world outside, in whose place a test puts its own. All outlive the lifecycle.
  struct Outside {
    Clock& clock;
    Reachability& reachability;
    Probes& probes;
  };

  // Launches the application, which shows its screen in `window`; throws ProgramError when it
  // cannot. All outlive the lifecycle, which outlives the event loop. A window that becomes a
  // picture is no use of the application: it is not counted and asks nothing.
  AppLifecycle(Application& application, const Platform& platform, LayoutWindow& window,
               const Outside& outside);
  ~AppLifecycle();
  AppLifecycle(const AppLifecycle&) = delete;
  AppLifecycle& operator=(const AppLifecycle&) = delete;

 private:
  void usePlatform(const Platform& platform, const Outside& outside);

  MotionPreference motion_;
  ActivationWatch activation_;
  RatingScreen screen_;
  DesktopUrlOpener urlOpener_;
  std::optional<ForegroundWatch> watch_;  // of a window that is shown
  ThreadQueues workQueues_;               // last: what they still run uses the rest
};

}  // namespace endpin
