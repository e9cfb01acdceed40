// The whole application over a platform: the one way in which the rooms are put together. Every
// face makes one, and so does every test that wants a whole tuner. One at a time. Thread: main.
#pragma once

#include <optional>

#include "app/AppDelegate.h"
#include "app/ViewController.h"
#include "ports/Platform.h"
#include "ports/Screen.h"

namespace endpin {

class Application {
 public:
  // `platform` outlives the application. Nothing starts yet.
  // The two switches are the controller's.
  explicit Application(Platform& platform, bool demoModeEnabled = ViewController::kDemoModeEnabled,
                       bool fineHearingByDefault = false);
  // The listener ends here; the run loop must not run any more.
  ~Application();
  Application(const Application&) = delete;
  Application& operator=(const Application&) = delete;

  // Launches on a screen that has layouts: `screen` installs one, which loads the main screen. A
  // rating prompt that is to count the launch has its platform named before. `screen` outlives the
  // application.
  void launch(Screen& screen);

  // Launches where there are no layouts: every element exists, and the main screen appears.
  void launch();

  // The application comes back to the front, see AppDelegate. Only after a launch on a screen.
  void enterForeground() { delegate_->applicationWillEnterForeground(); }

  ViewController& controller() { return controller_; }
  [[nodiscard]] const ViewController& controller() const { return controller_; }

 private:
  Platform& platform_;
  ViewController controller_;
  std::optional<AppDelegate> delegate_;
};

}  // namespace endpin
