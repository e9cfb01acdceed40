// Tells when the application as a whole loses the user: another one is activated, it is suspended,
// or its last window goes. The focus may move between windows of its own.
//
// Made and destroyed on the main thread, within the life of the application object.
#pragma once

#include <QObject>
#include <functional>
#include <map>
#include <mutex>

#include "ports/RatingPlatform.h"

namespace endpin {

class ActivationWatch final : public ApplicationNotifications {
 public:
  ActivationWatch();
  ActivationWatch(const ActivationWatch&) = delete;
  ActivationWatch& operator=(const ActivationWatch&) = delete;

  ObserverId addWillResignActiveObserver(std::function<void()> resigning) override;
  void removeObserver(ObserverId observer) override;

 private:
  void tellAll();
  std::function<void()> firstFrom(ObserverId& observer);

  std::mutex mutex_;
  std::map<ObserverId, std::function<void()>> observers_;
  ObserverId lastId_ = 0;
  bool active_;
  QObject connection_;
};

}  // namespace endpin
