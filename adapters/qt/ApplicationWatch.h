// The life of the application as the desktop tells of it: when it loses the user, and when it comes
// back to the front. Thread: main, within the life of the application object.
#pragma once

#include <QObject>
#include <functional>
#include <map>
#include <mutex>
#include <optional>

#include "ports/RatingPlatform.h"

class QWindow;

namespace endpin {

// Tells when the application as a whole loses the user: another one is activated, it is suspended,
// or its last window goes. The focus may move between windows of its own.
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

// Tells when the user comes back to the application: it is active again after its window was
// hidden or minimised, or the application suspended, or after it was not active for a while. On
// Wayland the last is all that a phone tells when another application covers this one.
class ForegroundWatch {
 public:
  // Seconds without the user that count as having left. A notification, the volume or a question of
  // the system takes the keyboard for less; who opens another application and does something there
  // is away for longer.
  static constexpr double kAway = 10;

  // For a window that is shown. `window` and `clock` outlive the watch. The clock is the one of the
  // day, which goes on while a phone sleeps.
  ForegroundWatch(QWindow& window, const Clock& clock, std::function<void()> entered);
  ForegroundWatch(const ForegroundWatch&) = delete;
  ForegroundWatch& operator=(const ForegroundWatch&) = delete;

 private:
  [[nodiscard]] bool hidden() const;
  void look();

  QWindow& window_;
  const Clock& clock_;
  const std::function<void()> entered_;
  Qt::ApplicationState state_;
  std::optional<double> awaySince_;  // seconds since 1970
  bool wasHidden_ = false;           // meanwhile
  QObject connections_;
};

}  // namespace endpin
