// What the application is running on. Called by layout selection, the calibration and the
// feedback, anew each time. Thread: main, but for systemVersion (any).
#pragma once

#include <optional>
#include <string>

namespace endpin {

enum class InterfaceIdiom : int { Phone = 0, Tablet = 1 };

class Device {
 public:
  virtual ~Device() = default;

  // The interface idiom as the platform numbers it (InterfaceIdiom, or another number), or nothing
  // on a device that does not answer the question.
  [[nodiscard]] virtual std::optional<int> userInterfaceIdiom() const = 0;

  // Height of the main screen in points.
  [[nodiscard]] virtual double screenHeight() const = 0;

  // Version of the operating system, such as "12" or "8.1"; what is no number counts as none.
  [[nodiscard]] virtual std::string systemVersion() const = 0;

  // Keeps the screen from dimming and locking while the application runs.
  virtual void setIdleTimerDisabled(bool disabled) = 0;

  // Devices that do not answer the idiom question count as phones.
  [[nodiscard]] bool isPhone() const {
    return userInterfaceIdiom().value_or(0) == static_cast<int>(InterfaceIdiom::Phone);
  }
  [[nodiscard]] bool isTablet() const {
    return userInterfaceIdiom() == static_cast<int>(InterfaceIdiom::Tablet);
  }
};

}  // namespace endpin
