#include "adapters/rating/ActivationWatch.h"

#include <QGuiApplication>
#include <utility>

namespace endpin {

ActivationWatch::ActivationWatch()
    : active_(QGuiApplication::applicationState() == Qt::ApplicationActive) {
  QObject::connect(qGuiApp, &QGuiApplication::applicationStateChanged, &connection_,
                   [this](Qt::ApplicationState state) {
                     const bool wasActive = std::exchange(active_, state == Qt::ApplicationActive);
                     if (wasActive && !active_) tellAll();
                   });
}

ApplicationNotifications::ObserverId ActivationWatch::addWillResignActiveObserver(
    std::function<void()> resigning) {
  const std::lock_guard lock(mutex_);
  observers_.emplace(++lastId_, std::move(resigning));
  return lastId_;
}

void ActivationWatch::removeObserver(ObserverId observer) {
  const std::lock_guard lock(mutex_);
  observers_.erase(observer);
}

// An observer may remove itself or others, which then are not called.
void ActivationWatch::tellAll() {
  ObserverId next = 1;
  while (const auto resigning = firstFrom(next)) resigning();
}

// The observer of that number or the next higher one, without holding the lock for its call.
std::function<void()> ActivationWatch::firstFrom(ObserverId& observer) {
  const std::lock_guard lock(mutex_);
  const auto found = observers_.lower_bound(observer);
  if (found == observers_.end()) return {};
  observer = found->first + 1;
  return found->second;
}

}  // namespace endpin
