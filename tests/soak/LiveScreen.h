// The real screen of the live soak, over the sound system: pressed at random, its listener's
// readings open to other threads. Thread: main, unless it says otherwise.
#pragma once

#include <QTimer>
#include <atomic>
#include <optional>

#include "adapters/bundle/FileBundle.h"
#include "adapters/cubeb/CubebMicrophone.h"
#include "adapters/cubeb/CubebOutput.h"
#include "adapters/cubeb/CubebPlayers.h"
#include "adapters/offline/FixedDevice.h"
#include "adapters/offline/MemoryStore.h"
#include "adapters/pulse/DesktopAudioSession.h"
#include "adapters/qt/LayoutWindow.h"
#include "adapters/qt/QtRunLoop.h"
#include "tests/soak/Dice.h"
#include "tests/soak/Stalls.h"

namespace endpin::soak {

class LiveScreen {
 public:
  // `log` outlives the screen.
  LiveScreen(Log& log, std::uint32_t seed);
  ~LiveScreen();
  LiveScreen(const LiveScreen&) = delete;

  // What the presses are for at the moment.
  enum class Mode {
    Rest,    // no panel, no tone, no presses: a state that can be compared
    Wander,  // panels, presets, switches
    Tone,    // the tuning fork is open and sounds, one string after the other
  };
  void setMode(Mode mode) { mode_ = mode; }  // Thread: any.

  // What the listener said last. Thread: any.
  [[nodiscard]] double level() const { return level_; }          // linear
  [[nodiscard]] double frequency() const { return frequency_; }  // hertz
  [[nodiscard]] bool toneWanted() const { return toneWanted_; }

  // Watched from the first frame on. After the event loop.
  [[nodiscard]] const Heartbeat& heartbeat() const { return heartbeat_.value(); }
  [[nodiscard]] std::size_t presses() const { return presses_; }

 private:
  static MemoryStore& prepared(MemoryStore& settings);

  void beat();
  void watchIdleness();
  void press();
  void wander();
  void playOn();
  void closePanel();
  bool click(const QString& wanted);

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
  std::optional<Heartbeat> heartbeat_;
  std::optional<StallClock::time_point> idleSince_;
  double idle_ = 0;  // seconds that the event loop has slept
  QTimer beats_;
  QTimer pressing_;
  std::size_t presses_ = 0;
  bool resting_ = false;
  std::atomic<Mode> mode_ = Mode::Wander;
  std::atomic<double> level_ = 0;
  std::atomic<double> frequency_ = 0;
  std::atomic<bool> toneWanted_ = false;
};

}  // namespace endpin::soak
