// What the platform tells the application about its life. Called by the rating prompt.
#pragma once

#include <functional>

namespace endpin {

class ApplicationNotifications {
 public:
  using ObserverId = int;  // 0 is none

  virtual ~ApplicationNotifications() = default;

  // Calls `resigning` on the main thread each time the application is about to lose the user's
  // attention, until the observer is removed.
  // Thread: any.
  virtual ObserverId addWillResignActiveObserver(std::function<void()> resigning) = 0;

  // When it returns on the main thread, the observer is called no more.
  // Thread: any.
  virtual void removeObserver(ObserverId observer) = 0;
};

}  // namespace endpin
