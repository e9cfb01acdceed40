#include "adapters/qt/LayoutWindow.h"

#include <fmt/format.h>

#include <QImage>
#include <QQmlComponent>
#include <QQmlError>
#include <QScreen>
#include <QShortcut>
#include <QUrl>
#include <algorithm>
#include <cmath>
#include <utility>

namespace endpin {
namespace {

constexpr const char* kRoomColour = "#120D0A";
constexpr double kSmallestScale = 0.5;
constexpr double kPictureScale = 2;
constexpr int kTitleBar = 48;   // points left free for what the desktop puts around a window
constexpr int kSmallest = 320;  // points: the width of the smallest layout, the height of one lying
constexpr double kLonger = 480;  // its other side
constexpr double kLying = 1.2;   // width to height, from which a layout lies

// How much smaller than its points a layout is shown in less room than the smallest needs.
double shrinkingFor(QSizeF points) {
  const bool lying = points.width() >= kLying * points.height();
  const QSizeF least = lying ? QSizeF(kLonger, kSmallest) : QSizeF(kSmallest, kLonger);
  return std::min({1.0, points.width() / least.width(), points.height() / least.height()});
}

// What the hardware covers, upright and lying. A phone on its side has the notch there, and a lower
// home indicator.
QVariantMap insetsOf(const DeviceModel& model) {
  constexpr double kLyingIndicator = 21;
  const bool phone = model.idiom == InterfaceIdiom::Phone;
  const double below = phone ? std::min(model.safeBottom, kLyingIndicator) : model.safeBottom;
  const QVariantMap lying{
      {"side", phone ? model.safeTop : 0}, {"top", phone ? 0 : model.safeTop}, {"bottom", below}};
  return {{"top", model.safeTop}, {"bottom", model.safeBottom}, {"lying", lying}};
}

}  // namespace

LayoutWindow::LayoutWindow(Setup setup, ViewController& controller, Log& log)
    : setup_(std::move(setup)), controller_(controller), log_(log) {
  engine_.setOutputWarningsToStandardError(false);
  QObject::connect(&engine_, &QQmlEngine::warnings, &window_, [this](const auto& warnings) {
    for (const QQmlError& warning : warnings) log_.line(warning.toString().toStdString());
  });
  window_.setTitle(QStringLiteral("Endpin"));
  window_.setColor(QColor(kRoomColour));
  const auto bind = [this](const char* keys, auto does) {
    new QShortcut(QKeySequence(QLatin1String(keys)), &window_, does, Qt::WindowShortcut);
  };
  bind("Ctrl+Q", [this] { window_.close(); });
  bind("Ctrl+W", [this] { window_.close(); });
  bind("F11", [this] { window_.fillScreen(!(window_.windowStates() & Qt::WindowFullScreen)); });
  QObject::connect(&window_, &QWindow::widthChanged, &window_, [this] { arrange(); });
  QObject::connect(&window_, &QWindow::heightChanged, &window_, [this] { arrange(); });
}

void LayoutWindow::installLayout(const std::string& name) {
  binder_.reset();
  prepare();
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
  const QSizeF size = layoutSize();
  std::unique_ptr<QObject> object;
  if (component.isReady()) {  // to make an object of a faulty one ends the process
    object.reset(component.createWithInitialProperties({{"width", size.width()},
                                                        {"height", size.height()},
                                                        {"safeInsets", insetsOf(setup_.model)},
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

// Gives the window its size before there is a layout, which is then made for it.
void LayoutWindow::prepare() {
  const QSizeF size(setup_.model.width, setup_.model.height);
  const QSizeF room = window_.screen()->availableSize() - QSize(0, kTitleBar);
  if (setup_.presentation == Presentation::Picture) {
    window_.setFlags(Qt::FramelessWindowHint | Qt::BypassWindowManagerHint);
    const QSizeF points = setup_.size.isEmpty() ? size : setup_.size;
    window_.resize((points * kPictureScale / window_.devicePixelRatio()).toSize());
  } else if (setup_.presentation == Presentation::Screen) {
    window_.resize(window_.screen()->availableSize());
  } else if (setup_.presentation == Presentation::Device) {
    const double scale =
        std::min({1.0, room.width() / size.width(), room.height() / size.height()});
    window_.setMinimumSize((size * std::min(kSmallestScale, scale)).toSize());
    window_.resize((size * scale).toSize());
  } else {
    window_.setMinimumSize({kSmallest, kSmallest});
    window_.resize(size.boundedTo(room).toSize());
    if (!setup_.settings || memory_) return;
    window_.fillScreen(memory_.emplace(window_, *setup_.settings).restore());
  }
}

void LayoutWindow::show() {
  if (setup_.presentation == Presentation::Screen) {
    window_.showMaximized();
  } else if (window_.windowStates()) {
    window_.setVisible(true);  // show() would forget them
  } else {
    window_.show();
  }
  arrange();
}

double LayoutWindow::scale() const {
  const QSizeF room = window_.size();
  if (setup_.presentation == Presentation::Device) {
    return std::min(room.width() / setup_.model.width, room.height() / setup_.model.height);
  }
  const bool picture = setup_.presentation == Presentation::Picture;
  const double density = picture ? kPictureScale / window_.devicePixelRatio() : 1;
  return density * shrinkingFor(room / density);
}

QSizeF LayoutWindow::layoutSize() const {
  if (setup_.presentation != Presentation::Device) return QSizeF(window_.size()) / scale();
  return {setup_.model.width, setup_.model.height};
}

// A device that keeps its size lies in the middle, on whole pixels: lines and pictures stay sharp.
void LayoutWindow::arrange() {
  if (!root_) return;
  const QSizeF size = layoutSize();
  const QSizeF free = QSizeF(window_.size()) - size * scale();
  const double pixel = 1 / window_.devicePixelRatio();
  const auto half = [pixel](double length) { return std::floor(length / 2 / pixel) * pixel; };
  root_->setScale(scale());
  root_->setSize(size);
  root_->setPosition({half(free.width()), half(free.height())});
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

void LayoutWindow::KeyWindow::fillScreen(bool fill) {
  const Qt::WindowStates states = windowStates();
  if (fill == states.testFlag(Qt::WindowFullScreen)) return;
  if (fill) former_ = states;
  setWindowStates(fill ? Qt::WindowFullScreen : former_);
}

// What comes back from the layout: nothing is open that it would close.
void LayoutWindow::KeyWindow::keyPressEvent(QKeyEvent* event) {
  QQuickWindow::keyPressEvent(event);
  if (!event->isAccepted() && event->key() == Qt::Key_Escape) fillScreen(false);
}

}  // namespace endpin
