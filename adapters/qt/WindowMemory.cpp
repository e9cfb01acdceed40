#include "adapters/qt/WindowMemory.h"

#include <QEvent>
#include <QGuiApplication>
#include <QScreen>
#include <algorithm>
#include <chrono>

namespace endpin {
namespace {

using namespace std::chrono_literals;

constexpr auto kSettling = 500ms;
constexpr int kTitleBar = 48;  // points left free for what the desktop puts around a window

// A strip of the upper edge that is on a screen can be seen, and the title bar above it taken.
bool canBeTaken(const QRect& window) {
  constexpr int kGrip = 64;
  const QRect edge(window.topLeft(), QSize(window.width(), kGrip));
  const auto screens = QGuiApplication::screens();
  return std::any_of(screens.begin(), screens.end(), [&edge](const QScreen* screen) {
    const QRect seen = screen->availableGeometry() & edge;
    return seen.width() >= kGrip && seen.height() >= kGrip / 2;
  });
}

// Wayland tells no application where its windows are, and lets none say where they go.
bool hasPlaces() {
  return !QGuiApplication::platformName().startsWith(QLatin1String("wayland"));
}

}  // namespace

WindowMemory::WindowMemory(QWindow& window, SettingsStore& settings)
    : window_(window), settings_(settings) {
  settled_.setSingleShot(true);
  settled_.setInterval(kSettling);
  settled_.callOnTimeout([this] { remember(); });
  const auto wait = [this] { settled_.start(); };
  QObject::connect(&window, &QWindow::xChanged, this, wait);
  QObject::connect(&window, &QWindow::yChanged, this, wait);
  QObject::connect(&window, &QWindow::widthChanged, this, wait);
  QObject::connect(&window, &QWindow::heightChanged, this, wait);
  QObject::connect(&window, &QWindow::windowStateChanged, this, wait);
  window.installEventFilter(this);
}

WindowMemory::~WindowMemory() {
  if (settled_.isActive()) remember();
}

// A window that was closed has no state any more.
bool WindowMemory::eventFilter(QObject* /*window*/, QEvent* event) {
  if (event->type() == QEvent::Close && settled_.isActive()) remember();
  return false;
}

bool WindowMemory::restore() {
  const auto number = [this](const char* key) {
    constexpr std::int64_t kFarthest = 1 << 20;
    return static_cast<int>(std::clamp(settings_.integerForKey(key), -kFarthest, kFarthest));
  };
  QRect last(number("windowX"), number("windowY"), number("windowWidth"), number("windowHeight"));
  if (last.isEmpty()) return false;
  const bool placed = hasPlaces() && settings_.stringForKey("windowX") && canBeTaken(last);
  const QScreen* screen = placed ? QGuiApplication::screenAt(last.center()) : nullptr;
  if (!screen) screen = window_.screen();
  window_.resize(last.size().boundedTo(screen->availableSize() - QSize(0, kTitleBar)));
  if (placed) window_.setPosition(last.topLeft());
  if (settings_.boolForKey("windowMaximised")) window_.setWindowStates(Qt::WindowMaximized);
  return settings_.boolForKey("windowFullScreen");
}

// The size and the place are those of the window by itself, which it has again afterwards; and one
// that fills the screen may have been maximised before.
void WindowMemory::remember() {
  const Qt::WindowStates states = window_.windowStates();
  if (states & Qt::WindowMinimized || !window_.isVisible()) return;
  settled_.stop();
  const bool fillsScreen = states & Qt::WindowFullScreen;
  const bool maximised = states & Qt::WindowMaximized;
  settings_.setBool("windowFullScreen", fillsScreen);
  if (!fillsScreen) settings_.setBool("windowMaximised", maximised);
  if (!fillsScreen && !maximised) {
    settings_.setInteger("windowWidth", window_.width());
    settings_.setInteger("windowHeight", window_.height());
    if (hasPlaces()) {
      settings_.setInteger("windowX", window_.x());
      settings_.setInteger("windowY", window_.y());
    }
  }
  settings_.synchronize();
}

}  // namespace endpin
