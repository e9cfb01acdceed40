#include "desktop/AppLifecycle.h"

#include "adapters/cli11/ProgramError.h"
#include "rating/RatingPrompt.h"

namespace endpin {

AppLifecycle::AppLifecycle(Application& application, const Platform& platform, LayoutWindow& window,
                           const Outside& outside)
    : motion_([&window](bool reduced) { window.setReducedMotion(reduced); }),
      screen_(window.window(),
              {.runLoop = platform.runLoop,
               .clock = outside.clock,
               .settings = platform.settings,
               .stringSounds = [&application] { return application.controller().stringSounds(); }},
              platform.log),
      urlOpener_(platform.log, [this, &bundle = platform.bundle] {
        screen_.showNotice(bundle.localizedString("StorePageUnopened", "", ""),
                           bundle.localizedString("CloseTitle", "", ""));
      }) {
  if (!window.isPicture()) usePlatform(platform, outside);
  application.launch(window);
  if (!window.hasLayout()) throw ProgramError(kExitFailure, "the screen cannot be shown");
  watch_.emplace(window.window(), outside.clock, [&application] { application.enterForeground(); });
}

AppLifecycle::~AppLifecycle() {
  RatingPrompt::releaseSharedInstance();
}

void AppLifecycle::usePlatform(const Platform& platform, const Outside& outside) {
  RatingPrompt::usePlatform({.clock = outside.clock,
                             .workQueues = workQueues_,
                             .mainQueue = platform.runLoop,
                             .settings = platform.settings,
                             .reachability = outside.reachability,
                             .probes = outside.probes,
                             .mainBundle = platform.bundle,
                             .log = platform.log,
                             .device = platform.device,
                             .notifications = activation_,
                             .windows = screen_,
                             .urlOpener = urlOpener_,
                             .modernAlerts = &screen_});
}

}  // namespace endpin
