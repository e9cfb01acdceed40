// What the rating prompt shows and opens on a desktop or a phone: its alert as the dialog of the
// layout, at a polite moment; its store page in the software centre; and a notice where nothing can
// open that.
//
// The dialog is the item named "ratingDialog" with the properties `title`, `message`, `buttons`
// (captions) and `shown`, in an item whose `openPanel` names the panel that is open. It hides
// itself and then emits `chosen(int)`, the index of the button that was pressed, -1 for none.
//
// Thread: main, but for the visibility of an alert (any).
#pragma once

#include <QObject>
#include <QPointer>
#include <QStringList>
#include <functional>
#include <memory>
#include <string>

#include "app/RatingManners.h"
#include "ports/RatingPlatform.h"

class QQuickItem;
class QQuickWindow;

namespace endpin {

class RatingScreen final : public QObject, public ScreenWindows, public ModernAlerts {
  Q_OBJECT

 public:
  // All outlive the screen, which outlives its alerts. The layout may come later than the screen
  // and go before it. A layout without a dialog shows none, and says so in the log once.
  RatingScreen(QQuickWindow& window, const RatingManners::Ports& manners, Log& log);
  ~RatingScreen() override;

  // One window at the normal level, whose root controller presents the alerts.
  [[nodiscard]] ScreenWindow* keyWindow() const override;
  [[nodiscard]] std::vector<ScreenWindow*> windows() const override { return {keyWindow()}; }

  // The alert counts as presented from the moment that it appears, which may be later or never: see
  // RatingManners. One that is presented while another is on the screen takes its place at once.
  std::shared_ptr<ModernAlert> newAlert(const std::string& title, const std::string& message,
                                        AlertControllerStyle style) override;

  // Tells the user something in the same dialog, as soon as what runs now has returned. Not while
  // an alert is on the screen.
  void showNotice(const std::string& text, const std::string& button);

 private Q_SLOTS:
  void onChosen(int button);
  void leave();

 private:
  class Alert;
  struct Place;

  void present(const std::shared_ptr<ScreenController>& controller,
               const ScreenController::Completion& completion);
  bool show(const std::shared_ptr<Alert>& alert, const ScreenController::Completion& completion);
  void fill(const QString& title, const QString& message, const QStringList& buttons);
  void dismiss(const ScreenController* controller, ScreenController::Completion completion);
  bool findItem();
  [[nodiscard]] bool userIsBusy() const;

  QQuickWindow& window_;
  Log& log_;
  RatingManners manners_;
  const std::unique_ptr<Place> place_;
  QPointer<QQuickItem> item_;
  std::shared_ptr<Alert> shown_;
  bool complained_ = false;
};

// Opens addresses with the desktop's handler for their scheme. The store that this application
// comes from is the desktop's software centre, which knows it by the name of its desktop file. What
// the handler makes of the address is its own business: only that there is none is noticed.
class DesktopUrlOpener final : public UrlOpener {
 public:
  // `unopened` is called when nothing opens an address, which is logged as well. `log` outlives the
  // opener.
  DesktopUrlOpener(Log& log, std::function<void()> unopened)
      : log_(log), unopened_(std::move(unopened)) {}

  void openUrl(const std::string& url) override;

 private:
  Log& log_;
  const std::function<void()> unopened_;
};

}  // namespace endpin
