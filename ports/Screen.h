// The window that a layout is installed in. Called by the application delegate at start-up.
// Thread: main.
#pragma once

#include <string>

namespace endpin {

class Screen {
 public:
  virtual ~Screen() = default;

  // Loads the layout file of that name, makes its screen, connects its outlets and actions to the
  // main screen controller and shows it in a new window of the size of the device's screen. The
  // controller's viewDidLoad and viewWillAppear follow. A layout that is missing is logged.
  virtual void installLayout(const std::string& name) = 0;

  // Whether the platform asks the delegate if the status bar is hidden; one that does not is told.
  [[nodiscard]] virtual bool asksForStatusBar() const = 0;
  // Asks again: `hidden` is the delegate's answer.
  virtual void setNeedsStatusBarAppearanceUpdate(bool hidden) = 0;
  // Tells: hidden or not, with the platform's number of the animation.
  virtual void setStatusBarHidden(bool hidden, int animation) = 0;
};

}  // namespace endpin
