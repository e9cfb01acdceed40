#include "adapters/rating/LayoutDialog.h"

#include <QQuickItem>
#include <QQuickWindow>
#include <utility>

namespace endpin {
namespace {

QQuickItem* itemNamed(const QString& name, QQuickItem& top) {
  if (top.objectName() == name) return &top;
  for (QQuickItem* child : top.childItems()) {
    if (QQuickItem* found = itemNamed(name, *child)) return found;
  }
  return nullptr;
}

}  // namespace

void LayoutDialog::present(const std::shared_ptr<ScreenController>& controller,
                           const Completion& completion) {
  const auto alert = std::dynamic_pointer_cast<DialogAlert>(controller);
  if (!alert || !findItem()) return;
  leave();
  shown_ = alert;
  alert->setOnScreen(true);
  show(*alert);
  if (completion) completion();
}

bool LayoutDialog::findItem() {
  if (item_) return true;
  item_ = itemNamed(QStringLiteral("ratingDialog"), *window_.contentItem());
  if (item_ && connect(item_, SIGNAL(chosen(int)), this, SLOT(onChosen(int)))) {
    connect(item_, &QObject::destroyed, this, &LayoutDialog::leave);
    return true;
  }
  item_ = nullptr;
  if (!std::exchange(complained_, true)) log_.line("The layout has no dialog to ask for a rating.");
  return false;
}

// The dialog takes the focus when it appears. One that takes the place of another has appeared
// before, and its buttons, of which one may have the focus, are made anew.
void LayoutDialog::show(const DialogAlert& alert) {
  const bool replaces = item_->property("shown").toBool();
  item_->setProperty("title", QString::fromStdString(alert.title()));
  item_->setProperty("message", QString::fromStdString(alert.message()));
  item_->setProperty("buttons", alert.buttons());
  item_->setProperty("shown", true);
  if (replaces) item_->forceActiveFocus();
}

void LayoutDialog::dismiss(const ScreenController& alert, Completion completion) {
  if (shown_.get() == &alert) {
    leave();
    if (item_) item_->setProperty("shown", false);
  }
  runLater(std::move(completion));
}

void LayoutDialog::runLater(Completion completion) {
  if (completion) QMetaObject::invokeMethod(this, std::move(completion), Qt::QueuedConnection);
}

// The answer is carried out at once, lest somebody asks again before it is noted. The alert lives
// until it is.
void LayoutDialog::onChosen(int button) {
  const auto answered = shown_;
  leave();
  if (answered) answered->press(static_cast<std::size_t>(button));
}

void LayoutDialog::leave() {
  if (shown_) shown_->setOnScreen(false);
  shown_.reset();
}

}  // namespace endpin
