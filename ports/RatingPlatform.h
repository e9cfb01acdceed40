// What the rating prompt asks of a platform. Filled where the application is wired; everything that
// it points to outlives the prompt and the work that it has queued.
//
// A null pointer says that the platform has no such service, and the prompt then takes the next
// way: review request, modern alert, legacy alert for asking; review request, store sheet, address
// for rating. With neither kind of alert nothing is shown.
#pragma once

#include <functional>

#include "ports/Alerts.h"
#include "ports/Bundle.h"
#include "ports/Device.h"
#include "ports/Log.h"
#include "ports/Network.h"
#include "ports/RunLoop.h"
#include "ports/ScreenWindows.h"
#include "ports/SettingsStore.h"
#include "ports/Store.h"
#include "ports/WorkQueues.h"

namespace endpin {

// The time of day, for dates that are remembered across launches. Thread: any.
class Clock {
 public:
  virtual ~Clock() = default;

  // Seconds since the beginning of 1970, with fractions. It follows the user's clock, and goes back
  // when the clock is set back.
  [[nodiscard]] virtual double secondsSince1970() const = 0;
};

// What the platform tells the application about its life.
class ApplicationNotifications {
 public:
  using ObserverId = int;  // 0 is none

  virtual ~ApplicationNotifications() = default;

  // Calls `resigning` on the main thread each time the application is about to lose the user's
  // attention, until the observer is removed.
  // Thread: any.
  virtual ObserverId addWillResignActiveObserver(std::function<void()> resigning) = 0;

  // When it returns on the main thread, the observer is called no more.
  // Thread: any.
  virtual void removeObserver(ObserverId observer) = 0;
};

struct RatingPlatform {
  // Used on every thread that the prompt works on.
  Clock& clock;
  WorkQueues& workQueues;
  RunLoop& mainQueue;
  SettingsStore& settings;
  Reachability& reachability;
  Probes& probes;
  const Bundle& mainBundle;
  Log& log;

  // Used on the main thread only, but for the system version and the registration of observers.
  Device& device;
  ApplicationNotifications& notifications;
  ScreenWindows& windows;
  UrlOpener& urlOpener;

  ResourceBundles* resourceBundles = nullptr;  // without, the main bundle has the texts
  ReviewRequest* reviewRequest = nullptr;
  StoreSheets* storeSheets = nullptr;
  ModernAlerts* modernAlerts = nullptr;
  LegacyAlerts* legacyAlerts = nullptr;
};

}  // namespace endpin
