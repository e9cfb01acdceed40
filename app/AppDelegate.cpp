#include "app/AppDelegate.h"

#include <fmt/format.h>

#include "ports/DeviceTable.h"
#include "rating/RatingPrompt.h"

namespace endpin {
namespace {

constexpr int kStatusBarAnimationSlide = 2;

}  // namespace

bool AppDelegate::applicationDidFinishLaunching() {
  configureRatingPrompt();
  initializeStoryBoardBasedOnScreenSize();
  hideStatusBar();
  RatingPrompt::appLaunched(true);
  return true;
}

void AppDelegate::configureRatingPrompt() {
  RatingPrompt::setAppId(kStoreId);
  RatingPrompt::setDaysUntilPrompt(4.0);
  RatingPrompt::setUsesUntilPrompt(7);
  RatingPrompt::setSignificantEventsUntilPrompt(-1);
  RatingPrompt::setTimeBeforeReminding(3.0);
  RatingPrompt::setOpenInAppStore(true);
}

// The idiom is asked once for the phones' rows and again for the tablets'; every height is a test
// of its own.
void AppDelegate::initializeStoryBoardBasedOnScreenSize() {
  for (const InterfaceIdiom idiom : {InterfaceIdiom::Phone, InterfaceIdiom::Tablet}) {
    if (ports_.device.userInterfaceIdiom() != static_cast<int>(idiom)) continue;
    const double screenHeight = ports_.device.screenHeight();
    for (const DeviceModel& model : kDeviceTable) {
      if (model.idiom != idiom) continue;
      if (model.height == screenHeight) {
        ports_.screen.installLayout(model.layout);
        hasWindow_ = true;
      }
      if (model.endsHeightTest) {
        ports_.log.line(fmt::format("iPhone has a height of: {:f}", screenHeight));
      }
    }
  }
}

void AppDelegate::hideStatusBar() {
  if (ports_.screen.asksForStatusBar()) {
    ports_.screen.setNeedsStatusBarAppearanceUpdate(prefersStatusBarHidden());
  } else {
    ports_.screen.setStatusBarHidden(true, kStatusBarAnimationSlide);
  }
}

void AppDelegate::applicationWillEnterForeground() {
  RatingPrompt::appEnteredForeground(true);
}

}  // namespace endpin
