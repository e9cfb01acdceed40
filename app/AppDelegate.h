// The application's delegate: start-up in its order and what the platform reports of the
// application's life. The program's entry point makes it and calls it. Thread: main.
#pragma once

#include "ports/Device.h"
#include "ports/Log.h"
#include "ports/Screen.h"

namespace endpin {

class AppDelegate {
 public:
  // Everything passed in outlives the delegate.
  struct Ports {
    Device& device;
    Screen& screen;
    Log& log;
  };

  explicit AppDelegate(const Ports& ports) : ports_(ports) {}

  // Configures the rating prompt, shows the layout of the device, hides the status bar and counts
  // the launch. Always true: start-up goes on whatever is missing.
  bool applicationDidFinishLaunching();

  // Installs the layout of the device's idiom and exact height. A device in no row gets no layout
  // from here: what it shows then is the platform's own choice.
  void initializeStoryBoardBasedOnScreenSize();

  [[nodiscard]] bool prefersStatusBarHidden() const { return true; }

  void applicationWillEnterForeground();
  void applicationWillResignActive() {}
  void applicationDidEnterBackground() {}
  void applicationDidBecomeActive() {}
  void applicationWillTerminate() {}

  // Whether a layout was installed from here.
  [[nodiscard]] bool hasWindow() const { return hasWindow_; }

 private:
  void configureRatingPrompt();
  void hideStatusBar();

  Ports ports_;
  bool hasWindow_ = false;
};

}  // namespace endpin
