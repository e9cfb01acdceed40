// The dialog in the layout of the window: the item named "ratingDialog" with the properties
// `title`, `message`, `buttons` (captions) and `shown`. It hides itself and then emits
// `chosen(int)`, the index of the button that was pressed.
//
// Shows one alert at a time. A layout without such an item shows none, and says so in the log once.
// Thread: main.
#pragma once

#include <QObject>
#include <QPointer>
#include <memory>

#include "adapters/rating/DialogAlert.h"
#include "ports/Log.h"

class QQuickItem;
class QQuickWindow;

namespace endpin {

class LayoutDialog final : public QObject {
  Q_OBJECT

 public:
  using Completion = ScreenController::Completion;

  // Both outlive the dialog. The layout may come later than the dialog and go before it.
  LayoutDialog(QQuickWindow& window, Log& log) : window_(window), log_(log) {}

  // Shows a DialogAlert, in place of the one that is shown; nothing else can be shown. `completion`
  // runs before it returns.
  void present(const std::shared_ptr<ScreenController>& controller, const Completion& completion);

  // Hides `alert` if it is shown. `completion` runs from the event loop.
  void dismiss(const ScreenController& alert, Completion completion);
  void runLater(Completion completion);

  // The alert that is shown, or null.
  [[nodiscard]] DialogAlert* shown() const { return shown_.get(); }

 private Q_SLOTS:
  void onChosen(int button);
  void leave();

 private:
  bool findItem();
  void show(const DialogAlert& alert);

  QQuickWindow& window_;
  Log& log_;
  QPointer<QQuickItem> item_;
  std::shared_ptr<DialogAlert> shown_;
  bool complained_ = false;
};

}  // namespace endpin
