// The real screen on a sound server of its own, pressed and listening, while the server is killed,
// frozen, and robbed of its devices: how long the screen freezes, how soon it listens again, what
// it leaks.
#include <malloc.h>

#include <CLI/CLI.hpp>
#include <QGuiApplication>
#include <cstdlib>
#include <filesystem>
#include <map>

#include "adapters/log/NullLog.h"
#include "adapters/log/StreamLog.h"
#include "tests/soak/LiveScreen.h"
#include "tests/support/PrivateSoundServer.h"

namespace endpin::soak {
namespace {

using testing::ChildProcess;
using Server = testing::PrivateSoundServer;

constexpr double kLongestFreeze = 0.1;        // seconds
constexpr double kListensAgain = 2.0;         // seconds
constexpr double kTwoBlocks = 8192 / 7019.5;  // seconds: one to begin in, one that is whole

// The toolkit keeps pictures and texts of what it has drawn, more of them in one state of rest than
// in the next; a leak grows past this in a longer run.
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
  double descriptors = 0;
  double threads = 0;
  double heapKib = 0;

  static ProcessSize now() {
    const auto entries = [](const char* folder) {
      return static_cast<double>(std::distance(std::filesystem::directory_iterator(folder), {}));
    };
    return {entries("/proc/self/fd"), entries("/proc/self/task"),
            static_cast<double>(mallinfo2().uordblks) / 1024};
  }
};

void sleepFor(double seconds) {
  std::this_thread::sleep_for(std::chrono::duration<double>(seconds));
}

// Plays the tone, takes the sound system apart and puts it together again, in seeded random order,
// and takes the times. On a thread of its own, which must live as long as what it starts: nothing
// of it may hold up the screen.
class Stagehand {
 public:
  // Both outlive the stagehand; the server runs.
  Stagehand(Server& server, LiveScreen& screen, std::uint32_t seed)
      : server_(server), screen_(screen), dice_(seed) {
    for (const double tone : kTones) {
      writeWav(toneFile(tone), testing::bowedTone(48000.0, 40, tone));
    }
  }

  // Faults for that long, after one round of each to warm up.
  void work(double seconds) {
    for (const Fault& fault : kFaults) round(fault);
    sizeBefore_ = sizeAtRest();
    const double end = clockSeconds() + seconds;
    while (clockSeconds() < end) round(kFaults[dice_.below(kFaults.size())]);
    sizeAfter_ = sizeAtRest();
    player_.reset();
  }

  void report(Bounds& bounds) const {
    for (const auto& [what, times] : recoveries_) {
      bounds.atMost(fmt::format("{}, worst of {}", what, times.taken.size()),
                    *std::max_element(times.taken.begin(), times.taken.end()), times.bound, "s");
    }
    bounds.atMost("what had to happen and did not", failures_, 0);
    bounds.tell("descriptors, threads, heap before",
                fmt::format("{}, {}, {:.0f} KiB", sizeBefore_.descriptors, sizeBefore_.threads,
                            sizeBefore_.heapKib));
    bounds.atMost("descriptors more", sizeAfter_.descriptors - sizeBefore_.descriptors, 0);
    bounds.atMost("threads more", sizeAfter_.threads - sizeBefore_.threads, 0);
    bounds.atMost("heap more", sizeAfter_.heapKib - sizeBefore_.heapKib, kHeapMarginKib, "KiB");
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
    double bound = kListensAgain;
    if (!fault.losesSpeaker) {
      startTone();
      if (lost)
        take(
            fault, "listens", [this] { return hearsLevel(); }, back, bound);
      bound += kTwoBlocks;
      take(
          fault, "tells the pitch", [this] { return hearsPitch(); }, back, bound);
    }
    if (tone) take(fault, "tone sounds", sounds, back, bound);
  }

  // No panel, no tone, no fault, and the tone of the microphone heard.
  ProcessSize sizeAtRest() {
    startTone();
    await("a tone at rest", [this] { return hearsPitch(); });
    screen_.mode = LiveScreen::Mode::Rest;
    await("the tuning fork at rest", [this] { return !screen_.toneWanted; });
    sleepFor(3);
    return ProcessSize::now();
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
  bool await(const char* what, const std::function<bool()>& holds) {
    const double limit = clockSeconds() + 10;
    bool held = holds();
    for (; !held && clockSeconds() < limit; held = holds()) sleepFor(0.005);
    expect(held, what);
    return held;
  }

  void take(const Fault& fault, const char* what, const std::function<bool()>& holds, double since,
            double bound) {
    Times& times = recoveries_[fmt::format("{}: {}", fault.name, what)];
    times.bound = bound;
    times.taken.push_back(await(what, holds) ? clockSeconds() - since : 99);
  }

  void expect(bool held, const char* what) {
    if (held) return;
    ++failures_;
    fmt::print("  did not happen: {}\n", what);
  }

  struct Times {
    double bound = 0;  // seconds
    std::vector<double> taken;
  };

  Server& server_;
  LiveScreen& screen_;
  Dice dice_;
  std::unique_ptr<ChildProcess> player_;
  std::size_t string_ = 0;  // that is played
  std::map<std::string, Times> recoveries_;
  ProcessSize sizeBefore_, sizeAfter_;
  int failures_ = 0;
};

void reportFreezes(Bounds& bounds, const std::vector<Stall>& screen,
                   const std::vector<Stall>& machine) {
  const auto longest = [&](const std::vector<Stall>& stalls, auto seconds) {
    double most = 0;
    for (const Stall& stall : stalls) most = std::max(most, seconds(stall));
    return 1000 * most;
  };
  const auto whole = [](const Stall& stall) { return stall.seconds(); };
  bounds.tell("longest stall of the machine, of the screen",
              fmt::format("{:.0f} ms, {:.0f} ms", longest(machine, whole), longest(screen, whole)));
  bounds.atMost("longest freeze of the screen's own",
                longest(screen, [&](const Stall& stall) { return own(stall, machine); }),
                1000 * kLongestFreeze, "ms");
}

int soak(double minutes, std::uint32_t seed, bool verbose, int argc, char** argv) {
  Server server;
  for (const auto& [name, value] : server.environment()) setenv(name.c_str(), value.c_str(), 1);
  setenv("QT_QPA_PLATFORM", "offscreen", 1);
  setenv("QT_QUICK_BACKEND", "software", 1);
  if (!server.start()) {
    fmt::print("  {}\n", server.reason());
    return 1;
  }
  const QGuiApplication application(argc, argv);
  StreamLog problems(stderr);
  NullLog nowhere;
  LiveScreen screen(verbose ? static_cast<Log&>(problems) : nowhere, seed);
  Stagehand stagehand(server, screen, seed);
  Witness witness;
  std::jthread stage([&] {
    stagehand.work(minutes * 60);
    QMetaObject::invokeMethod(
        qApp, [] { QCoreApplication::quit(); }, Qt::QueuedConnection);
  });
  QGuiApplication::exec();
  stage.join();

  Bounds bounds;
  bounds.tell("presses", fmt::format("{}", screen.presses()));
  reportFreezes(bounds, screen.stalls(), witness.stop());
  stagehand.report(bounds);
  return bounds.exitCode();
}

}  // namespace
}  // namespace endpin::soak

int main(int argc, char** argv) {
  double minutes = 3;
  std::uint32_t seed = 1;
  bool verbose = false;
  CLI::App options("The real screen while its sound system comes and goes");
  options.add_option("--minutes", minutes, "after a round of each fault")
      ->check(CLI::Range(0.1, 10000.0));
  options.add_option("--seed", seed, "of faults and presses");
  options.add_flag("--verbose", verbose, "what the application logs, to standard error");
  CLI11_PARSE(options, argc, argv);
  fmt::print("Live soak: {} min, seed {}\n", minutes, seed);
  return endpin::soak::soak(minutes, seed, verbose, argc, argv);
}
