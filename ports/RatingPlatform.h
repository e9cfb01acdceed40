// What the rating prompt asks of a platform. Filled where the application is wired; everything that
// it points to outlives the prompt and the work that it has queued.
//
// A null pointer says that the platform has no such service, and the prompt then takes the next
// way: review request, modern alert, legacy alert for asking; review request, store sheet, address
// for rating. With neither kind of alert nothing is shown.
#pragma once

#include "ports/Alerts.h"
#include "ports/ApplicationNotifications.h"
#include "ports/Bundle.h"
#include "ports/Clock.h"
#include "ports/Device.h"
#include "ports/Log.h"
#include "ports/Network.h"
#include "ports/ResourceBundles.h"
#include "ports/RunLoop.h"
#include "ports/ScreenWindows.h"
#include "ports/SettingsStore.h"
#include "ports/Store.h"
#include "ports/WorkQueues.h"

namespace endpin {

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
  ResourceBundles& resourceBundles;
  ScreenWindows& windows;
  UrlOpener& urlOpener;

  ReviewRequest* reviewRequest = nullptr;
  StoreSheets* storeSheets = nullptr;
  ModernAlerts* modernAlerts = nullptr;
  LegacyAlerts* legacyAlerts = nullptr;
};

}  // namespace endpin
