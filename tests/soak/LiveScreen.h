// The real screen of the live soak, over the sound system: pressed at random, its listener's
// readings open to other threads. Thread: main, unless it says otherwise.
#pragma once

#include <QAbstractEventDispatcher>
#include <QTest>
#include <QTimer>
#include <atomic>

#include "adapters/bundle/FileBundle.h"
#include "adapters/cubeb/CubebMicrophone.h"
#include "adapters/cubeb/CubebOutput.h"
#include "adapters/cubeb/CubebPlayers.h"
#include "adapters/offline/FixedDevice.h"
#include "adapters/offline/MemoryStore.h"
#include "adapters/pulse/DesktopAudioSession.h"
#include "adapters/qt/LayoutWindow.h"
#include "adapters/qt/QtRunLoop.h"
#include "audio/LumoListener.h"
#include "tests/qt/FindItem.h"
#include "tests/soak/Soak.h"
#include "tests/soak/Stalls.h"

namespace endpin::soak {

class LiveScreen {
 public:
  // `log` outlives the screen.
  LiveScreen(Log& log, std::uint32_t seed) : log_(log), dice_(seed) {
    watchIdleness();
    window_.installLayout("Main_iPhone12Pro");
    beats_.setTimerType(Qt::PreciseTimer);
    QObject::connect(&beats_, &QTimer::timeout, &beats_, [this] { beat(); });
    // Watched from the first frame on.
    QObject::connect(
        &window_.window(), &QQuickWindow::frameSwapped, &beats_, [this] { beats_.start(10); },
        static_cast<Qt::ConnectionType>(Qt::QueuedConnection | Qt::SingleShotConnection));
    QObject::connect(&pressing_, &QTimer::timeout, &pressing_, [this] { press(); });
    pressing_.start(200);
  }
  ~LiveScreen() { LumoListener::releaseSharedListener(); }
  LiveScreen(const LiveScreen&) = delete;

  // What the presses are for. Thread: any.
  enum class Mode {
    Rest,    // no panel, no tone, no presses: a state that can be compared
    Wander,  // panels, presets, switches
    Tone,    // the tuning fork is open and sounds, one string after the other
  };
  std::atomic<Mode> mode = Mode::Wander;

  // What the listener said last, and whether the tuning fork is to sound. Thread: any.
  std::atomic<double> level = 0;      // linear
  std::atomic<double> frequency = 0;  // hertz
  std::atomic<bool> toneWanted = false;

  // After the event loop.
  [[nodiscard]] const std::vector<Stall>& stalls() const { return heartbeat_.stalls(); }
  [[nodiscard]] int presses() const { return presses_; }

 private:
  static MemoryStore& prepared(MemoryStore& settings) {
    settings.setBool("NewFirstLaunchCello", true);
    settings.setInteger("a4InHzSavedValue", 440);
    settings.setInteger("savedSliderValue", 5);
    settings.setBool("soundNotificationEnabled", true);
    settings.setBool("frequencyChartEnabled", true);
    return settings;
  }

  void watchIdleness() {
    auto* events = QAbstractEventDispatcher::instance();
    QObject::connect(events, &QAbstractEventDispatcher::aboutToBlock, &beats_,
                     [this] { idleSince_ = clockSeconds(); });
    QObject::connect(events, &QAbstractEventDispatcher::awake, &beats_, [this] {
      if (idleSince_ > 0) idle_ += clockSeconds() - std::exchange(idleSince_, 0);
    });
  }

  void beat() {
    heartbeat_.beat(idle_);
    level = static_cast<double>(controller_.lastReading().power);
    frequency = static_cast<double>(controller_.lastReading().frequency);
    toneWanted = controller_.tuningFork().curPlayState == TuningFork::Playing;
  }

  void press() {
    pressing_.setInterval(static_cast<int>(dice_.ratioBetween(60, 900)));
    const QString open = window_.root()->property("openPanel").toString();
    const bool tone = mode == Mode::Tone;
    if (mode == Mode::Rest || (tone && !open.isEmpty() && open != "fork")) {
      if (!open.isEmpty()) closePanel();
    } else if (open.isEmpty()) {
      click(tone ? "fork" : oneOf({"fork", "chart", "settings", "about"}));
    } else if (!tone && dice_.chance(0.25)) {
      closePanel();
    } else if (open == "fork") {
      click(oneOf({"a3TFButton", "d3TFButton", "g2TFButton", "c2TFButton"}));
    } else if (open == "settings") {
      click(oneOf({"setA392btn", "setA415btn", "setA432btn", "setA440btn", "setA441btn",
                   "setA442btn", "setA443btn", "setA444btn", "setA466btn",
                   "setFrequencyValueStepper", "micSensitivitySlider", "soundNotificationSwitch",
                   "stringSoundsSwitch", "freqChartSwitch"}));
    }
  }

  QString oneOf(const QStringList& names) {
    return names[static_cast<qsizetype>(dice_.below(static_cast<std::size_t>(names.size())))];
  }

  void closePanel() {
    ++presses_;
    QTest::keyClick(&window_.window(), Qt::Key_Escape);
  }

  void click(const QString& wanted) {
    QQuickItem* item = findItem(*window_.root(), wanted);
    if (!item) return;
    // Off the middle: steppers have two halves, and a slider moves.
    const QPointF place =
        item->mapToScene({item->width() * dice_.between(0.1, 0.9), item->height() / 2});
    if (!window_.window().contentItem()->contains(place)) return;  // a panel still slides
    ++presses_;
    QTest::mouseClick(&window_.window(), Qt::LeftButton, {}, place.toPoint());
  }

  Log& log_;
  FixedDevice device_;
  FileBundle bundle_{{ENDPIN_RESOURCES, "en", "1"}, log_};
  CubebMicrophone microphone_{"", log_};
  CubebOutput output_;
  CubebPlayers players_;
  DesktopAudioSession session_;
  MemoryStore settings_;
  QtRunLoop runLoop_;
  Platform platform_{microphone_,         session_, players_, output_, runLoop_,
                     prepared(settings_), device_,  bundle_,  log_};
  ViewController controller_{platform_, false};
  LayoutWindow window_{{.model = *deviceNamed("phone:844")}, controller_, log_};

  Dice dice_;
  Heartbeat heartbeat_;
  double idleSince_ = 0;  // seconds; 0 while the event loop is awake
  double idle_ = 0;       // seconds that the event loop has slept
  QTimer beats_;
  QTimer pressing_;
  int presses_ = 0;
};

}  // namespace endpin::soak
