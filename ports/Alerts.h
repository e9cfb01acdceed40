// Alerts with a title, a message and some buttons, of two generations. A platform has either or
// both; the modern one is preferred. Called by the rating prompt. Thread: main, but for the two
// questions whether an alert shows.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "ports/ScreenWindows.h"

namespace endpin {

enum class AlertControllerStyle : int { Alert = 1 };
enum class AlertActionStyle : int { Default = 0, Cancel = 1 };

// An alert that is presented like any other controller. The maker and the screen share it. While
// one is on the screen another one takes its place, and the first goes without an answer.
class ModernAlert : public ScreenController {
 public:
  // Gets the title of the pressed action.
  using Handler = std::function<void(std::string_view title)>;

  // Adds a button below the ones before. `handler` runs on the main thread when the user presses
  // it, after the alert has left the screen; not when the alert is dismissed by its controller.
  virtual void addAction(const std::string& title, AlertActionStyle style, Handler handler) = 0;

  // Whether the alert's view is part of a window: from when it is shown, which may be later than
  // the call that presents it, to the call that dismisses it or the press of a button. One that was
  // not shown is not visible, and may be presented anew. Thread: any.
  [[nodiscard]] virtual bool viewHasSuperview() const = 0;
};

class ModernAlerts {
 public:
  virtual ~ModernAlerts() = default;
  virtual std::shared_ptr<ModernAlert> newAlert(const std::string& title,
                                                const std::string& message,
                                                AlertControllerStyle style) = 0;
};

// An alert that shows itself and tells its delegate the index of the button that ended it.
class LegacyAlert {
 public:
  // Runs on the main thread once the alert has left the screen.
  using DidDismiss = std::function<void(LegacyAlert& alert, std::int64_t buttonIndex)>;

  virtual ~LegacyAlert() = default;

  // Adds a button after the cancel button, which has index 0.
  virtual void addButtonWithTitle(const std::string& title) = 0;
  virtual void show() = 0;

  // Dismisses the alert as if the button of that index had been pressed; -1 is none of them.
  virtual void dismissWithClickedButtonIndex(std::int64_t index, bool animated) = 0;

  // Thread: any.
  [[nodiscard]] virtual bool isVisible() const = 0;
};

class LegacyAlerts {
 public:
  virtual ~LegacyAlerts() = default;
  virtual std::shared_ptr<LegacyAlert> newAlert(const std::string& title,
                                                const std::string& message,
                                                LegacyAlert::DidDismiss didDismiss,
                                                const std::string& cancelButtonTitle) = 0;
};

}  // namespace endpin
