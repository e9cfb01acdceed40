#include "adapters/qt/RatingScreen.h"

#include <QDesktopServices>
#include <QGuiApplication>
#include <QQuickItem>
#include <QQuickWindow>
#include <QUrl>
#include <atomic>
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

// Without slashes: what stands after two of them would be a host, whose capitals get lost.
QUrl softwareCentrePage() {
  return QUrl(QStringLiteral("appstream:") + QGuiApplication::desktopFileName());
}

}  // namespace

// Its words and what its buttons do.
class RatingScreen::Alert final : public ModernAlert {
 public:
  Alert(RatingScreen& screen, const std::string& itsTitle, const std::string& itsMessage)
      : title(QString::fromStdString(itsTitle)),
        message(QString::fromStdString(itsMessage)),
        screen_(screen) {}

  // The dialog draws its buttons by their places; the last one is the cancel button.
  void addAction(const std::string& text, AlertActionStyle /*style*/, Handler handler) override {
    buttons.append(QString::fromStdString(text));
    actions_.push_back([text, handler = std::move(handler)] { handler(text); });
  }
  [[nodiscard]] bool viewHasSuperview() const override { return onScreen; }

  // An alert presents nothing over itself: what it is asked to present takes its place.
  [[nodiscard]] ScreenController* presentedViewController() const override { return nullptr; }
  void presentViewController(std::shared_ptr<ScreenController> controller, bool /*animated*/,
                             Completion completion) override {
    screen_.present(controller, completion);
  }
  void dismissViewController(bool /*animated*/, Completion completion) override {
    screen_.dismiss(this, std::move(completion));
  }

  void press(int button) const {
    const auto place = static_cast<std::size_t>(button);
    if (button >= 0 && place < actions_.size()) actions_[place]();
  }

  const QString title, message;
  QStringList buttons;
  std::atomic<bool> onScreen = false;

 private:
  RatingScreen& screen_;
  std::vector<std::function<void()>> actions_;
};

// The screen as the prompt searches it: a window with one view, whose controller it finds.
struct RatingScreen::Place {
  struct Root final : ScreenView, ScreenController {
    explicit Root(RatingScreen& owner) : screen(owner) {}
    [[nodiscard]] std::vector<ScreenView*> subviews() const override { return {}; }
    [[nodiscard]] ScreenController* nextResponderViewController() const override { return self; }
    [[nodiscard]] ScreenController* presentedViewController() const override {
      return screen.shown_.get();
    }
    void presentViewController(std::shared_ptr<ScreenController> controller, bool /*animated*/,
                               Completion completion) override {
      screen.present(controller, completion);
    }
    // Nothing presents the root, so that it stays.
    void dismissViewController(bool /*animated*/, Completion completion) override {
      screen.dismiss(nullptr, std::move(completion));
    }
    RatingScreen& screen;
    ScreenController* const self = this;
  };
  struct Window final : ScreenWindow {
    explicit Window(Root& itsRoot) : root(itsRoot) {}
    [[nodiscard]] std::vector<ScreenView*> subviews() const override { return {&root}; }
    [[nodiscard]] ScreenController* nextResponderViewController() const override { return nullptr; }
    [[nodiscard]] double windowLevel() const override { return kNormalLevel; }
    [[nodiscard]] ScreenController* rootViewController() const override { return &root; }
    Root& root;
  };
  explicit Place(RatingScreen& screen) : root(screen) {}
  Root root;
  Window window{root};
};

RatingScreen::RatingScreen(QQuickWindow& window, const RatingManners::Ports& manners, Log& log)
    : window_(window), log_(log), manners_(manners), place_(std::make_unique<Place>(*this)) {}

RatingScreen::~RatingScreen() = default;

ScreenWindow* RatingScreen::keyWindow() const {
  return &place_->window;
}

std::shared_ptr<ModernAlert> RatingScreen::newAlert(const std::string& title,
                                                    const std::string& message,
                                                    AlertControllerStyle /*style*/) {
  return std::make_shared<Alert>(*this, title, message);
}

void RatingScreen::present(const std::shared_ptr<ScreenController>& controller,
                           const ScreenController::Completion& completion) {
  const auto alert = std::dynamic_pointer_cast<Alert>(controller);
  if (!alert || !findItem()) return;
  if (shown_) {
    show(alert, completion);
    return;
  }
  manners_.whenPolite([=, this] { return !userIsBusy() && show(alert, completion); });
}

// With a panel open, in another application, or reading a notice.
bool RatingScreen::userIsBusy() const {
  if (!item_ || QGuiApplication::applicationState() != Qt::ApplicationActive) return true;
  const QQuickItem* layout = item_->parentItem();
  return item_->property("shown").toBool() || !layout ||
         !layout->property("openPanel").toString().isEmpty();
}

bool RatingScreen::show(const std::shared_ptr<Alert>& alert,
                        const ScreenController::Completion& completion) {
  leave();
  shown_ = alert;
  alert->onScreen = true;
  fill(alert->title, alert->message, alert->buttons);
  if (completion) completion();
  return true;
}

// The dialog takes the focus when it appears. One that takes the place of another has appeared
// before, and its buttons, of which one may have the focus, are made anew.
void RatingScreen::fill(const QString& title, const QString& message, const QStringList& buttons) {
  const bool replaces = item_->property("shown").toBool();
  item_->setProperty("title", title);
  item_->setProperty("message", message);
  item_->setProperty("buttons", buttons);
  item_->setProperty("shown", true);
  if (replaces) item_->forceActiveFocus();
}

bool RatingScreen::findItem() {
  if (item_) return true;
  item_ = itemNamed(QStringLiteral("ratingDialog"), *window_.contentItem());
  if (item_ && connect(item_, SIGNAL(chosen(int)), this, SLOT(onChosen(int)))) {
    connect(item_, &QObject::destroyed, this, &RatingScreen::leave);
    return true;
  }
  item_ = nullptr;
  if (!std::exchange(complained_, true)) log_.line("The layout has no dialog to ask for a rating.");
  return false;
}

void RatingScreen::dismiss(const ScreenController* controller,
                           ScreenController::Completion completion) {
  if (controller && controller == shown_.get()) {
    leave();
    if (item_) item_->setProperty("shown", false);
  }
  if (completion) QMetaObject::invokeMethod(this, std::move(completion), Qt::QueuedConnection);
}

// After the dialog that led here has given the focus back.
void RatingScreen::showNotice(const std::string& text, const std::string& button) {
  const auto show = [=, this] {
    if (shown_ || !findItem()) return;
    fill({}, QString::fromStdString(text), {QString::fromStdString(button)});
  };
  QMetaObject::invokeMethod(this, show, Qt::QueuedConnection);
}

// The answer is carried out at once, lest somebody asks again before it is noted. The alert lives
// until it is.
void RatingScreen::onChosen(int button) {
  const auto answered = shown_;
  leave();
  if (answered) answered->press(button);
}

void RatingScreen::leave() {
  if (shown_) shown_->onScreen = false;
  shown_.reset();
}

void DesktopUrlOpener::openUrl(const std::string& url) {
  QUrl target(QString::fromStdString(url));
  if (target.scheme() == QLatin1String("itms-apps")) target = softwareCentrePage();
  if (QDesktopServices::openUrl(target)) return;
  log_.line("Nothing opens " + target.toString().toStdString());
  unopened_();
}

}  // namespace endpin
