#include "adapters/qt/ApplicationWatch.h"

#include <QGuiApplication>
#include <QWindow>
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

ForegroundWatch::ForegroundWatch(QWindow& window, const Clock& clock, std::function<void()> entered)
    : window_(window),
      clock_(clock),
      entered_(std::move(entered)),
      state_(QGuiApplication::applicationState()) {
  QObject::connect(&window_, &QWindow::visibilityChanged, &connections_, [this] { look(); });
  QObject::connect(qGuiApp, &QGuiApplication::applicationStateChanged, &connections_,
                   [this](Qt::ApplicationState state) {
                     state_ = state;
                     look();
                   });
  look();
}

bool ForegroundWatch::hidden() const {
  const auto visibility = window_.visibility();
  return visibility == QWindow::Hidden || visibility == QWindow::Minimized ||
         state_ == Qt::ApplicationHidden || state_ == Qt::ApplicationSuspended;
}

void ForegroundWatch::look() {
  const bool isHidden = hidden();
  if (isHidden || state_ != Qt::ApplicationActive) {
    if (!awaySince_) awaySince_ = clock_.secondsSince1970();
    wasHidden_ = wasHidden_ || isHidden;
    return;
  }
  const auto since = std::exchange(awaySince_, {});
  const bool left = since && clock_.secondsSince1970() - *since >= kAway;
  if (std::exchange(wasHidden_, false) || left) entered_();
}

}  // namespace endpin
