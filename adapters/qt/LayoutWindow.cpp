#include "adapters/qt/LayoutWindow.h"

#include <fmt/format.h>

#include <QImage>
#include <QQmlComponent>
#include <QQmlError>
#include <QScreen>
#include <QUrl>
#include <algorithm>
#include <cmath>
#include <utility>

namespace endpin {
namespace {

constexpr const char* kRoomColour = "#120D0A";
constexpr double kSmallestScale = 0.5;
constexpr double kPictureScale = 2;
constexpr int kTitleBar = 48;  // points left free for what the desktop puts around a window

}  // namespace

LayoutWindow::LayoutWindow(Setup setup, ViewController& controller, Log& log)
    : setup_(std::move(setup)), controller_(controller), log_(log) {
  engine_.setOutputWarningsToStandardError(false);
  QObject::connect(&engine_, &QQmlEngine::warnings, &window_, [this](const auto& warnings) {
    for (const QQmlError& warning : warnings) log_.line(warning.toString().toStdString());
  });
  window_.setTitle(QStringLiteral("Endpin"));
  window_.setColor(QColor(kRoomColour));
  QObject::connect(&window_, &QWindow::widthChanged, &window_, [this] { arrange(); });
  QObject::connect(&window_, &QWindow::heightChanged, &window_, [this] { arrange(); });
}

void LayoutWindow::installLayout(const std::string& name) {
  binder_.reset();
  root_ = load(name);
  if (!root_) return;
  root_->setParentItem(window_.contentItem());
  root_->setTransformOrigin(QQuickItem::TopLeft);
  binder_ = std::make_unique<LayoutBinder>(*root_, controller_, log_);
  controller_.viewDidLoad();
  controller_.viewWillAppear(false);
  binder_->flush();
  if (!setup_.openPanel.isEmpty()) root_->setProperty("openPanel", setup_.openPanel);
  show();
}

std::unique_ptr<QQuickItem> LayoutWindow::load(const std::string& name) {
  const QUrl url(setup_.folder + QString::fromStdString(name) + ".qml");
  QQmlComponent component(&engine_, url, QQmlComponent::PreferSynchronous);
  const QVariantMap insets{{"top", setup_.model.safeTop}, {"bottom", setup_.model.safeBottom}};
  std::unique_ptr<QObject> object;
  if (component.isReady()) {  // to make an object of a faulty one ends the process
    object.reset(component.createWithInitialProperties({{"width", setup_.model.width},
                                                        {"height", setup_.model.height},
                                                        {"safeInsets", insets},
                                                        {"texts", setup_.texts},
                                                        {"version", setup_.version},
                                                        {"reducedMotion", reducedMotion_}}));
  }
  for (const QQmlError& error : component.errors()) log_.line(error.toString().toStdString());
  if (auto* item = qobject_cast<QQuickItem*>(object.get())) {
    object.release();
    return std::unique_ptr<QQuickItem>(item);
  }
  log_.line(fmt::format("The layout {} cannot be shown.", name));
  return nullptr;
}

void LayoutWindow::show() {
  const QSizeF size(setup_.model.width, setup_.model.height);
  if (setup_.presentation == Presentation::Picture) {
    window_.setFlags(Qt::FramelessWindowHint | Qt::BypassWindowManagerHint);
    window_.resize((size * kPictureScale / window_.devicePixelRatio()).toSize());
    window_.show();
  } else if (setup_.presentation == Presentation::Screen) {
    window_.showMaximized();
  } else {
    const QSizeF room = window_.screen()->availableSize() - QSize(0, kTitleBar);
    const double scale =
        std::min({1.0, room.width() / size.width(), room.height() / size.height()});
    window_.setMinimumSize((size * std::min(kSmallestScale, scale)).toSize());
    window_.resize((size * scale).toSize());
    window_.show();
  }
  arrange();
}

// The layout keeps its proportions and lies in the middle, on whole pixels: lines and pictures stay
// sharp.
void LayoutWindow::arrange() {
  if (!root_) return;
  const QSizeF room = window_.size();
  const double scale = std::min(room.width() / root_->width(), room.height() / root_->height());
  const double pixel = 1 / window_.devicePixelRatio();
  const auto centred = [pixel](double free) { return std::floor(free / 2 / pixel) * pixel; };
  root_->setScale(scale);
  root_->setPosition({centred(room.width() - root_->width() * scale),
                      centred(room.height() - root_->height() * scale)});
}

QPointF LayoutWindow::inWindow(QPointF layoutPoint) const {
  return root_->mapToScene(layoutPoint);
}

void LayoutWindow::setNeedsStatusBarAppearanceUpdate(bool hidden) {
  if (setup_.presentation != Presentation::Screen || !root_) return;
  if (hidden) {
    window_.showFullScreen();
  } else {
    window_.showMaximized();
  }
}

void LayoutWindow::setStatusBarHidden(bool hidden, int /*animation*/) {
  setNeedsStatusBarAppearanceUpdate(hidden);
}

void LayoutWindow::setReducedMotion(bool reduced) {
  reducedMotion_ = reduced;
  if (root_) root_->setProperty("reducedMotion", reduced);
}

std::optional<std::string> LayoutWindow::saveScreenshot(const std::string& path) {
  if (!root_) return "there is no layout to take a picture of";
  binder_->flush();
  const QImage picture = window_.grabWindow();
  if (picture.isNull()) return "the window cannot be drawn";
  if (!picture.save(QString::fromStdString(path), "PNG")) return path + " cannot be written";
  return {};
}

}  // namespace endpin
