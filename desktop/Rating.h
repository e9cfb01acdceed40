// The rating prompt on a desktop: the platform that it asks of, and its end. Thread: main.
#pragma once

#include "adapters/rating/ActivationWatch.h"
#include "adapters/rating/DesktopUrlOpener.h"
#include "adapters/rating/DialogScreen.h"
#include "adapters/rating/HttpProbes.h"
#include "adapters/rating/RouteReachability.h"
#include "adapters/rating/SystemClock.h"
#include "adapters/rating/ThreadQueues.h"
#include "ports/Platform.h"
#include "rating/RatingPrompt.h"

namespace endpin {

class Rating {
 public:
  // Names the platform: before the application's delegate is told anything. `platform` and `window`
  // outlive this, which outlives the event loop.
  Rating(const Platform& platform, QQuickWindow& window)
      : screen_(window, platform.log), urlOpener_(platform.log) {
    RatingPrompt::usePlatform({.clock = clock_,
                               .workQueues = workQueues_,
                               .mainQueue = platform.runLoop,
                               .settings = platform.settings,
                               .reachability = reachability_,
                               .probes = probes_,
                               .mainBundle = platform.bundle,
                               .log = platform.log,
                               .device = platform.device,
                               .notifications = activation_,
                               .windows = screen_,
                               .urlOpener = urlOpener_,
                               .modernAlerts = &screen_});
  }
  ~Rating() { RatingPrompt::releaseSharedInstance(); }
  Rating(const Rating&) = delete;
  Rating& operator=(const Rating&) = delete;

 private:
  SystemClock clock_;
  RouteReachability reachability_;
  HttpProbes probes_;
  ActivationWatch activation_;
  DialogScreen screen_;
  DesktopUrlOpener urlOpener_;
  ThreadQueues workQueues_;  // last: what they still run uses the rest
};

}  // namespace endpin
