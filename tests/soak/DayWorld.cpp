#include "tests/soak/DayWorld.h"

#include "audio/LumoListener.h"

namespace endpin::soak {

DayWorld::DayWorld() : bundle({ENDPIN_RESOURCES, "en", "1.0"}, log) {
  settings.setInteger("numberOfRuns", 9);
  settings.setInteger("savedSliderValue", 5);
  settings.setBool("soundNotificationEnabled", true);
  settings.setBool("stringSoundsEnabled", false);
  settings.setBool("frequencyChartEnabled", true);
  settings.setInteger("a4InHzSavedValue", 440);
  settings.setBool("NewFirstLaunchCello", true);
  screen.connect(controller);
  RatingPrompt::usePlatform({.clock = rating,
                             .workQueues = rating,
                             .mainQueue = runLoop,
                             .settings = settings,
                             .reachability = rating,
                             .probes = rating,
                             .mainBundle = bundle,
                             .log = log,
                             .device = device,
                             .notifications = rating,
                             .resourceBundles = rating,
                             .windows = rating,
                             .urlOpener = rating,
                             .modernAlerts = &rating});
  delegate_.applicationDidFinishLaunching();
}

DayWorld::~DayWorld() {
  LumoListener::releaseSharedListener();
}

void DayWorld::installLayout(const std::string& /*name*/) {
  controller.viewDidLoad();
  controller.viewWillAppear(false);
}

void DayWorld::tick() {
  ++ticks;
  runLoop.runUntil(static_cast<double>(ticks) * 0.1);
  rating.advance(0.1);
}

void DayWorld::leaveAndReturn() {
  if (rating.resign) rating.resign();
  delegate_.applicationWillResignActive();
  delegate_.applicationDidEnterBackground();
  delegate_.applicationWillEnterForeground();
  delegate_.applicationDidBecomeActive();
}

void DayWorld::answer(std::size_t button) {
  if (!rating.alert || !rating.alert->onScreen) return;
  rating.alert->press(button);
  rating.alert.reset();
  rating.root.presented.reset();
}

}  // namespace endpin::soak
