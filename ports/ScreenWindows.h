// Windows, views and the controllers behind them, as far as one needs them to find what to present
// an alert from. Called by the rating prompt. Thread: main.
//
// The platform owns all of them. A pointer that it hands out is good until control returns to the
// run loop.
#pragma once

#include <functional>
#include <memory>
#include <vector>

namespace endpin {

class ScreenController {
 public:
  using Completion = std::function<void()>;

  virtual ~ScreenController() = default;

  // What is presented over this controller, or null.
  [[nodiscard]] virtual ScreenController* presentedViewController() const = 0;

  // Shows `controller`, which the same platform made, over this one and keeps it alive until it is
  // dismissed. It counts as presented from when it is shown, also while an animation still brings
  // it in: when the call returns, later where the platform waits for a better moment, or never
  // where it finds none. `completion` may be empty; it runs on the main thread once the controller
  // is shown.
  virtual void presentViewController(std::shared_ptr<ScreenController> controller, bool animated,
                                     Completion completion) = 0;

  // Takes this controller off the screen when it is presented, and what it presents with it. It
  // does not count as presented when the call returns. `completion` may be empty; it runs on the
  // main thread, later.
  virtual void dismissViewController(bool animated, Completion completion) = 0;
};

class ScreenView {
 public:
  virtual ~ScreenView() = default;

  // Back to front.
  [[nodiscard]] virtual std::vector<ScreenView*> subviews() const = 0;

  // The next responder of the view if that is a controller, else null.
  [[nodiscard]] virtual ScreenController* nextResponderViewController() const = 0;
};

class ScreenWindow : public ScreenView {
 public:
  static constexpr double kNormalLevel = 0;  // alerts and status bars lie above it

  [[nodiscard]] virtual double windowLevel() const = 0;
  [[nodiscard]] virtual ScreenController* rootViewController()
      const = 0;  // null when there is none
};

class ScreenWindows {
 public:
  virtual ~ScreenWindows() = default;

  // The window that takes the user's input, or null.
  [[nodiscard]] virtual ScreenWindow* keyWindow() const = 0;
  // All windows, back to front.
  [[nodiscard]] virtual std::vector<ScreenWindow*> windows() const = 0;
};

}  // namespace endpin
