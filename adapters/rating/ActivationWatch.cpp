#include "adapters/rating/ActivationWatch.h"

#include <QGuiApplication>
#include <utility>

namespace endpin {
namespace {

bool isActive() {
  return QGuiApplication::applicationState() == Qt::ApplicationActive;
}

}  // namespace

ActivationWatch::ActivationWatch() : active_(isActive()) {
  QObject::connect(qGuiApp, &QGuiApplication::applicationStateChanged, &connection_,
                   [this] { look(); });
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

void ActivationWatch::look() {
  const bool wasActive = std::exchange(active_, isActive());
  if (wasActive && !active_) tellAll();
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
