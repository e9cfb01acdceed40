#include "tests/soak/LiveScreen.h"

#include <QAbstractEventDispatcher>
#include <QTest>

#include "audio/LumoListener.h"
#include "tests/qt/FindItem.h"

namespace endpin::soak {
namespace {

using namespace std::chrono_literals;

const QStringList kPanels = {"fork", "chart", "settings", "about"};
const QStringList kInSettings = {"setA392btn",           "setA415btn",
                                 "setA432btn",           "setA440btn",
                                 "setA441btn",           "setA442btn",
                                 "setA443btn",           "setA444btn",
                                 "setA466btn",           "setFrequencyValueStepper",
                                 "micSensitivitySlider", "soundNotificationSwitch",
                                 "stringSoundsSwitch",   "freqChartSwitch"};
const QStringList kTones = {"a3TFButton", "d3TFButton", "g2TFButton", "c2TFButton"};

}  // namespace

MemoryStore& LiveScreen::prepared(MemoryStore& settings) {
  settings.setBool("NewFirstLaunchCello", true);
  settings.setInteger("a4InHzSavedValue", 440);
  settings.setInteger("savedSliderValue", 5);
  settings.setBool("soundNotificationEnabled", true);
  settings.setBool("frequencyChartEnabled", true);
  return settings;
}

LiveScreen::LiveScreen(Log& log, std::uint32_t seed) : log_(log), dice_(seed) {
  watchIdleness();
  window_.installLayout("Main_iPhone12Pro");
  beats_.setTimerType(Qt::PreciseTimer);
  QObject::connect(&beats_, &QTimer::timeout, &beats_, [this] { beat(); });
  QObject::connect(
      &window_.window(), &QQuickWindow::frameSwapped, &beats_,
      [this] {
        heartbeat_.emplace();
        beats_.start(10ms);
      },
      static_cast<Qt::ConnectionType>(Qt::QueuedConnection | Qt::SingleShotConnection));
  QObject::connect(&pressing_, &QTimer::timeout, &pressing_, [this] { press(); });
  pressing_.start(200ms);
}

LiveScreen::~LiveScreen() {
  LumoListener::releaseSharedListener();
}

void LiveScreen::beat() {
  heartbeat_->beat(idle_);
  level_ = static_cast<double>(controller_.lastReading().power);
  frequency_ = static_cast<double>(controller_.lastReading().frequency);
  toneWanted_ = controller_.tuningFork().curPlayState == TuningFork::Playing;
}

void LiveScreen::watchIdleness() {
  auto* events = QAbstractEventDispatcher::instance();
  QObject::connect(events, &QAbstractEventDispatcher::aboutToBlock, &beats_,
                   [this] { idleSince_ = StallClock::now(); });
  QObject::connect(events, &QAbstractEventDispatcher::awake, &beats_, [this] {
    if (!idleSince_) return;
    idle_ += std::chrono::duration<double>(StallClock::now() - *idleSince_).count();
    idleSince_.reset();
  });
}

void LiveScreen::press() {
  pressing_.setInterval(static_cast<int>(dice_.ratioBetween(60, 900)));
  const Mode mode = mode_;
  if (mode == Mode::Rest && resting_) return;
  resting_ = mode == Mode::Rest;
  switch (mode) {
    case Mode::Rest:
      closePanel();
      break;
    case Mode::Wander:
      wander();
      break;
    case Mode::Tone:
      playOn();
      break;
  }
}

void LiveScreen::wander() {
  const QString open = window_.root()->property("openPanel").toString();
  if (open.isEmpty()) {
    click(kPanels[static_cast<qsizetype>(dice_.below(kPanels.size()))]);
  } else if (dice_.chance(0.25)) {
    closePanel();
  } else if (open == "settings") {
    click(kInSettings[static_cast<qsizetype>(dice_.below(kInSettings.size()))]);
  } else if (open == "fork") {
    playOn();
  }
}

void LiveScreen::playOn() {
  const QString open = window_.root()->property("openPanel").toString();
  if (open.isEmpty()) {
    click("fork");
  } else if (open != "fork") {
    closePanel();
  } else {
    click(kTones[static_cast<qsizetype>(dice_.below(kTones.size()))]);
  }
}

void LiveScreen::closePanel() {
  ++presses_;
  QTest::keyClick(&window_.window(), Qt::Key_Escape);
}

bool LiveScreen::click(const QString& wanted) {
  QQuickItem* item = findItem(*window_.root(), wanted);
  if (!item) return false;
  // Off the middle: steppers have two halves, and a slider moves.
  const QPointF place =
      item->mapToScene({item->width() * dice_.between(0.1, 0.9), item->height() / 2});
  if (!window_.window().contentItem()->contains(place)) return false;  // a panel still slides
  ++presses_;
  QTest::mouseClick(&window_.window(), Qt::LeftButton, {}, place.toPoint());
  return true;
}

}  // namespace endpin::soak
