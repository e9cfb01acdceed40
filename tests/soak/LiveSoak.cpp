// The real screen on a sound server of its own, pressed and listening, while the server is killed,
// frozen, and robbed of its devices: how long the screen freezes, how soon it listens again, what
// it leaks.
#include <malloc.h>

#include <CLI/CLI.hpp>
#include <QAbstractEventDispatcher>
#include <QGuiApplication>
#include <QTest>
#include <QTimer>
#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <limits>
#include <thread>

#include "adapters/bundle/FileBundle.h"
#include "adapters/cubeb/CubebMicrophone.h"
#include "adapters/cubeb/CubebOutput.h"
#include "adapters/cubeb/CubebPlayers.h"
#include "adapters/log/Logs.h"
#include "adapters/offline/FixedDevice.h"
#include "adapters/offline/MemoryStore.h"
#include "adapters/pulse/SoundServer.h"
#include "adapters/qt/LayoutWindow.h"
#include "adapters/qt/QtRunLoop.h"
#include "app/Application.h"
#include "tests/qt/FindItem.h"
#include "tests/soak/Soak.h"
#include "tests/support/PrivateSoundServer.h"

namespace endpin::soak {
namespace {

using testing::ChildProcess;
using Server = testing::PrivateSoundServer;

constexpr double kLongestFreeze = 0.1;        // seconds
constexpr double kListensAgain = 2.0;         // seconds
constexpr double kTwoBlocks = 8192 / 7019.5;  // seconds: one to begin in, one that is whole

// The toolkit keeps pictures of what it has drawn; a leak grows past this in a longer run.
constexpr double kHeapMarginKib = 4096;

struct Fault {
  const char* name;
  double longest;     // seconds; 0.3 at least
  bool losesSpeaker;  // and nothing else
  bool (*begin)(Server&);
  bool (*end)(Server&);
};
constexpr std::array<Fault, 4> kFaults = {{
    {"server killed", 4, false, [](Server& server) { return server.kill(), true; },
     [](Server& server) { return server.start(); }},
    {"server frozen", 6, false, [](Server& server) { return server.freeze(), true; },
     [](Server& server) { return server.thaw(), true; }},
    {"microphone removed", 4, false, [](Server& server) { return server.removeMicrophone(); },
     [](Server& server) { return server.addMicrophone(); }},
    {"speaker removed", 4, true, [](Server& server) { return server.removeSpeaker(); },
     [](Server& server) { return server.addSpeaker(); }},
}};

struct ProcessSize {
  double descriptors, threads, heapKib;
};

ProcessSize processSize() {
  const auto entries = [](const char* folder) {
    return static_cast<double>(std::distance(std::filesystem::directory_iterator(folder), {}));
  };
  return {entries("/proc/self/fd"), entries("/proc/self/task"),
          static_cast<double>(mallinfo2().uordblks) / 1024};
}

double clockSeconds() {
  const auto now = std::chrono::steady_clock::now().time_since_epoch();
  return std::chrono::duration<double>(now).count();
}

void sleepFor(double seconds) {
  std::this_thread::sleep_for(std::chrono::duration<double>(seconds));
}

// A thread with nothing to do but to wake up in time: what it is late by is the machine's.
class Witness {
 public:
  // Seconds so far. Thread: any.
  [[nodiscard]] double late() const { return late_ + std::max(0.0, clockSeconds() - due_); }

 private:
  std::atomic<double> late_ = 0;
  std::atomic<double> due_ = clockSeconds() + 1;
  std::jthread thread_{[this](const std::stop_token& stop) {
    while (!stop.stop_requested()) {
      sleepFor(0.01);
      const double now = clockSeconds();
      late_ = late_ + std::max(0.0, now - due_.exchange(now + 0.015));
    }
  }};
};

// How long the thread that makes it was kept from beating, and how much of that it waited or worked
// itself: a busy machine lets threads wait for a processor, and a virtual one may stop altogether.
class Heartbeat {
 public:
  // `idle`: seconds without anything to do so far; a wake-up that comes late is the machine's.
  void beat(double idle) {
    const double now = clockSeconds();
    const double gap = now - last_;
    double excuse = 0;
    const std::array<double, 3> excuses = {idle, waited(), witness_.late()};
    for (std::size_t i = 0; i < excuses.size(); ++i) {
      excuse = std::max(excuse, excuses[i] - std::exchange(excuses_[i], excuses[i]));
    }
    longest = std::max(longest, gap);
    longestOwn = std::max(longestOwn, gap - excuse);
    last_ = now;
  }
  double longest = 0;     // seconds
  double longestOwn = 0;  // seconds

 private:
  // Ready to run, without a processor. A kernel that does not tell leaves 0.
  double waited() {
    double ran = 0;
    double waited = 0;
    schedule_.clear();
    schedule_.seekg(0);
    schedule_ >> ran >> waited;  // nanoseconds
    return waited * 1e-9;
  }

  const Witness witness_;
  std::ifstream schedule_{"/proc/thread-self/schedstat"};
  double last_ = std::numeric_limits<double>::infinity();
  std::array<double, 3> excuses_{};  // seconds at the last beat
};

// Pressed at random over the sound system, its listener's readings open to other threads. Thread:
// main, unless it says otherwise.
class LiveScreen {
 public:
  explicit LiveScreen(std::uint32_t seed) : dice_(seed) {
    settings_.setBool("NewFirstLaunchCello", true);
    settings_.setInteger("a4InHzSavedValue", 440);
    settings_.setBool("soundNotificationEnabled", true);
    auto* events = QAbstractEventDispatcher::instance();
    QObject::connect(events, &QAbstractEventDispatcher::aboutToBlock, &beats_,
                     [this] { idleSince_ = clockSeconds(); });
    QObject::connect(events, &QAbstractEventDispatcher::awake, &beats_, [this] {
      if (idleSince_ > 0) idle_ += clockSeconds() - std::exchange(idleSince_, 0);
    });
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
  [[nodiscard]] const Heartbeat& heartbeat() const { return heartbeat_; }

 private:
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

  void closePanel() { QTest::keyClick(&window_.window(), Qt::Key_Escape); }

  void click(const QString& wanted) {
    QQuickItem* item = findItem(*window_.root(), wanted);
    if (!item) return;
    // Off the middle: steppers have two halves, and a slider moves.
    const QPointF place =
        item->mapToScene({item->width() * dice_.between(0.1, 0.9), item->height() / 2});
    if (!window_.window().contentItem()->contains(place)) return;  // a panel still slides
    QTest::mouseClick(&window_.window(), Qt::LeftButton, {}, place.toPoint());
  }

  NullLog log_;
  FixedDevice device_;
  FileBundle bundle_{{ENDPIN_RESOURCES, "en", "1"}, log_};
  CubebMicrophone microphone_{"", log_};
  CubebOutput output_;
  CubebPlayers players_;
  SoundServer server_;
  DesktopAudioSession session_{server_};
  MemoryStore settings_;
  QtRunLoop runLoop_;
  Platform platform_{microphone_, session_, players_, output_, runLoop_,
                     settings_,   device_,  bundle_,  log_};
  Application application_{platform_, false};
  ViewController& controller_ = application_.controller();
  LayoutWindow window_{{.model = *deviceNamed("phone:844")}, controller_, log_};

  Dice dice_;
  Heartbeat heartbeat_;
  double idleSince_ = 0;  // seconds; 0 while the event loop is awake
  double idle_ = 0;       // seconds that the event loop has slept
  QTimer beats_;
  QTimer pressing_;
};

// Plays the tone, takes the sound system apart and puts it together again, in seeded random order,
// and takes the times. On a thread of its own, which must live as long as what it starts: nothing
// of it may hold up the screen.
class Stagehand {
 public:
  // All outlive the stagehand; the server runs.
  Stagehand(Server& server, LiveScreen& screen, Bounds& bounds, std::uint32_t seed)
      : server_(server), screen_(screen), bounds_(bounds), dice_(seed) {
    for (const double tone : kTones) {
      writeWav(toneFile(tone), testing::bowedTone(48000.0, 40, tone));
    }
  }

  // Faults for that long, after one round of each to warm up.
  void work(double seconds) {
    for (const Fault& fault : kFaults) round(fault);
    const ProcessSize before = sizeAtRest();
    const double end = clockSeconds() + seconds;
    while (clockSeconds() < end) round(kFaults[dice_.below(kFaults.size())]);
    const ProcessSize after = sizeAtRest();
    player_.reset();
    bounds_.atMost("descriptors more", after.descriptors - before.descriptors, 0);
    bounds_.atMost("threads more", after.threads - before.threads, 0);
    bounds_.atMost("heap more", after.heapKib - before.heapKib, kHeapMarginKib, "KiB");
  }

 private:
  static constexpr std::array<double, 3> kTones = {220.0, 440.0 / 3, 98.0};  // hertz

  void round(const Fault& fault) {
    const bool tone = fault.losesSpeaker || dice_.chance(0.4);
    screen_.mode = tone ? LiveScreen::Mode::Tone : LiveScreen::Mode::Wander;
    startTone();
    await("a tone is heard", [this] { return hearsPitch(); });
    if (tone) await("the tuning fork is pressed", [this] { return screen_.toneWanted.load(); });
    sleepFor(dice_.between(0.2, 2));
    expect(fault.begin(server_), fault.name);
    bool lost = false;
    const double end = clockSeconds() + dice_.ratioBetween(0.3, fault.longest);
    for (; clockSeconds() < end; sleepFor(0.02)) lost = lost || screen_.level < 0.002;
    giveBack(fault, lost, tone);
  }

  // The tone before goes, so that a block from before the fault cannot pass for a new one.
  void giveBack(const Fault& fault, bool lost, bool tone) {
    if (!fault.losesSpeaker) player_.reset();
    expect(fault.end(server_), fault.name);
    const double back = clockSeconds();
    const ChildProcess speaker = server_.record("speaker.monitor");
    const auto sounds = [&] {
      const testing::Sound sound = Server::recorded(speaker);
      return std::any_of(sound.samples.begin(), sound.samples.end(),
                         [](float sample) { return std::abs(sample) > 0.01F; });
    };
    if (!fault.losesSpeaker) {
      startTone();
      const auto level = [this] { return hearsLevel(); };
      const auto pitch = [this] { return hearsPitch(); };
      if (lost) take(fault, "listens", level, back, kListensAgain);
      take(fault, "tells the pitch", pitch, back, kListensAgain + kTwoBlocks);
    }
    const double behindPitch = fault.losesSpeaker ? 0 : kTwoBlocks;
    if (tone) take(fault, "tone sounds", sounds, back, kListensAgain + behindPitch);
  }

  // No panel, no tone, no fault, and the tone of the microphone heard.
  ProcessSize sizeAtRest() {
    startTone();
    await("a tone at rest", [this] { return hearsPitch(); });
    screen_.mode = LiveScreen::Mode::Rest;
    await("the tuning fork at rest", [this] { return !screen_.toneWanted; });
    sleepFor(3);
    return processSize();
  }

  [[nodiscard]] std::string toneFile(double tone) const {
    return server_.folder().file(fmt::format("tone{:.0f}.wav", tone));
  }
  void startTone() {
    string_ = (string_ + 1) % kTones.size();
    player_.reset();
    player_.reset(new ChildProcess(  // which cannot be moved
        server_.playIntoMicrophone(toneFile(kTones[string_]))));
  }

  [[nodiscard]] bool hearsLevel() const { return screen_.level > 0.01; }
  // To half a percent, wherever the presets may be.
  [[nodiscard]] bool hearsPitch() const {
    return hearsLevel() && std::abs(screen_.frequency / kTones[string_] - 1) < 0.005;
  }

  // Waits, ten seconds at most.
  void await(const char* what, const std::function<bool()>& holds) {
    const double limit = clockSeconds() + 10;
    while (!holds() && clockSeconds() < limit) sleepFor(0.005);
    expect(clockSeconds() < limit, what);
  }

  void take(const Fault& fault, const char* what, const std::function<bool()>& holds, double since,
            double bound) {
    await(what, holds);
    bounds_.atMost(fmt::format("{}: {}", fault.name, what), clockSeconds() - since, bound, "s");
  }

  void expect(bool held, const char* what) {
    if (!held) bounds_.atMost(fmt::format("did not happen: {}", what), 1, 0);
  }

  Server& server_;
  LiveScreen& screen_;
  Bounds& bounds_;
  Dice dice_;
  std::unique_ptr<ChildProcess> player_;
  std::size_t string_ = 0;  // that is played
};

int soak(double minutes, std::uint32_t seed, int argc, char** argv) {
  Server server;
  for (const auto& [name, value] : server.environment()) setenv(name.c_str(), value.c_str(), 1);
  setenv("QT_QPA_PLATFORM", "offscreen", 1);
  setenv("QT_QUICK_BACKEND", "software", 1);
  if (!server.start()) {
    fmt::print("  {}\n", server.reason());
    return 1;
  }
  const QGuiApplication application(argc, argv);
  LiveScreen screen(seed);
  Bounds bounds;
  Stagehand stagehand(server, screen, bounds, seed);
  std::jthread stage([&] {
    stagehand.work(minutes * 60);
    QMetaObject::invokeMethod(
        qApp, [] { QCoreApplication::quit(); }, Qt::QueuedConnection);
  });
  QGuiApplication::exec();
  stage.join();

  const Heartbeat& heartbeat = screen.heartbeat();
  bounds.tell("longest freeze of the screen", fmt::format("{:.0f} ms", 1000 * heartbeat.longest));
  bounds.atMost("longest of its own", 1000 * heartbeat.longestOwn, 1000 * kLongestFreeze, "ms");
  return bounds.exitCode();
}

}  // namespace
}  // namespace endpin::soak

int main(int argc, char** argv) {
  double minutes = 3;
  std::uint32_t seed = 1;
  CLI::App options("The real screen while its sound system comes and goes");
  options.add_option("--minutes", minutes, "after a round of each fault")
      ->check(CLI::Range(0.1, 10000.0));
  options.add_option("--seed", seed, "of faults and presses");
  CLI11_PARSE(options, argc, argv);
  fmt::print("Live soak: {} min, seed {}\n", minutes, seed);
  return endpin::soak::soak(minutes, seed, argc, argv);
}
