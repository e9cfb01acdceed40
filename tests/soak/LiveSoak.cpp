// The real screen on a sound server of its own, pressed and listening, while the server is killed,
// frozen, and robbed of its devices: how long the screen freezes, how soon it listens again, what
// it leaks.
#include <CLI/CLI.hpp>
#include <QGuiApplication>
#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <future>
#include <thread>

#include "adapters/log/NullLog.h"
#include "adapters/log/StreamLog.h"
#include "tests/soak/Bounds.h"
#include "tests/soak/Stagehand.h"

// Asked by the leak checker, where there is one: the toolkit's software renderer leaves the
// pictures of the last window to the end of the process, and cubeb forgets a few bytes of the sound
// server's library.
extern "C" const char* __lsan_default_suppressions();
extern "C" const char* __lsan_default_suppressions() {
  return "leak:libQt6Gui.so\nleak:libQt6Quick.so\nleak:libQt6Core.so\nleak:libpulse.so\n";
}

namespace endpin::soak {
namespace {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool kSanitized = true;  // several times slower, and with an allocator of their own
#else
constexpr bool kSanitized = false;
#endif

constexpr double kLongestFreeze = 0.1;        // seconds
constexpr double kListensAgain = 2.0;         // seconds
constexpr double kTwoBlocks = 8192 / 7019.5;  // seconds: one to begin in, one that is whole

// The toolkit keeps pictures and texts of what it has drawn, more of them in one state of rest than
// in the next; a leak grows past this in a longer run.
constexpr double kHeapMarginKib = 4096;

struct Options {
  double minutes = 3;
  std::uint32_t seed = 1;
  bool verbose = false;
};

class Live {
 public:
  explicit Live(const Options& options) : options_(options) {}

  int run(int argc, char** argv) {
    for (const auto& [name, value] : server_.environment()) setenv(name.c_str(), value.c_str(), 1);
    setenv("QT_QPA_PLATFORM", "offscreen", 1);
    setenv("QT_QUICK_BACKEND", "software", 1);
    std::promise<bool> up;
    std::promise<LiveScreen*> shown;
    std::thread stage([&] { work(up, shown.get_future()); });
    if (!up.get_future().get()) {
      stage.join();
      fmt::print("  {}\n", server_.reason());
      return 1;
    }
    const QGuiApplication application(argc, argv);
    StreamLog problems(stderr);
    NullLog nowhere;
    LiveScreen screen(options_.verbose ? static_cast<Log&>(problems) : nowhere, options_.seed);
    Witness witness;
    shown.set_value(&screen);
    QGuiApplication::exec();
    witness.stop();
    report(screen, witness);
    stageMayGo_.set_value();
    stage.join();
    return bounds_.exitCode();
  }

 private:
  // Thread: the stagehand's, which everything that it starts needs to live.
  void work(std::promise<bool>& up, std::future<LiveScreen*> shown) {
    const bool running = server_.start();
    up.set_value(running);
    if (!running) return;
    stagehand_.emplace(server_, *shown.get(), options_.seed);
    stagehand_->work(options_.minutes * 60);
    QMetaObject::invokeMethod(
        qApp, [] { QCoreApplication::quit(); }, Qt::QueuedConnection);
    stageMayGo_.get_future().wait();
    server_.kill();
  }

  void report(const LiveScreen& screen, const Witness& witness) {
    bounds_.tell("presses, beats of the screen",
                 fmt::format("{}, {}", screen.presses(), screen.heartbeat().beats()));
    reportFreezes(screen.heartbeat().stalls(), witness.stalls());
    std::vector<double> level;
    for (std::size_t i = 0; i < Stagehand::faults().size(); ++i) {
      const Recovery& recovery = stagehand_->recoveries()[i];
      level.insert(level.end(), recovery.level.begin(), recovery.level.end());
      reportRecovery(Stagehand::faults()[i].name, recovery);
    }
    bounds_.atMost("listens again, median of all", median(level), kListensAgain, "s");
    bounds_.atMost("what had to happen and did not", stagehand_->failures(), 0, "");
    reportSizes(stagehand_->sizeBefore(), stagehand_->sizeAfter());
  }

  void reportFreezes(const std::vector<Stall>& screen, const std::vector<Stall>& machine) {
    bounds_.tell("longest stall of the machine, as the witness saw",
                 fmt::format("{:.0f} ms, {} over 30 ms", 1000 * longest(machine), machine.size()));
    bounds_.tell("longest gap between beats of the screen",
                 fmt::format("{:.0f} ms, {} over 30 ms", 1000 * longest(screen), screen.size()));
    const auto ownOf = [&](const Stall& stall) { return own(stall, machine); };
    const auto worst =
        std::max_element(screen.begin(), screen.end(),
                         [&](const Stall& a, const Stall& b) { return ownOf(a) < ownOf(b); });
    if (worst == screen.end()) return;
    const std::chrono::duration<double> when = worst->begin - begin_;
    bounds_.tell(
        "the worst of the screen's own",
        fmt::format(
            "at {:.1f} s: {:.0f} ms, ran {:.0f}, waited for a processor {:.0f}, idle {:.0f}",
            when.count(), 1000 * worst->seconds(), 1000 * worst->times.ran,
            1000 * worst->times.waited, 1000 * worst->idle));
    if (!kSanitized) {
      bounds_.atMost("longest freeze of the screen's own", 1000 * ownOf(*worst),
                     1000 * kLongestFreeze, "ms");
    }
  }

  void reportRecovery(const std::string& name, const Recovery& recovery) {
    const auto tell = [&](const std::string& what, const std::vector<double>& times, double bound) {
      if (times.empty()) return;
      bounds_.atMost(fmt::format("{}: {}, worst of {}", name, what, times.size()),
                     *std::max_element(times.begin(), times.end()), bound, "s");
      bounds_.tell("  median", fmt::format("{:.2f} s", median(times)));
    };
    tell("listens", recovery.level, kListensAgain);
    tell("tells the pitch", recovery.pitch, kListensAgain + kTwoBlocks);
    tell("tone sounds", recovery.speaker, kListensAgain);
  }

  void reportSizes(const ProcessSize& before, const ProcessSize& after) {
    bounds_.tell("descriptors, threads before",
                 fmt::format("{}, {}", before.descriptors, before.threads));
    bounds_.atMost("descriptors more", after.descriptors - before.descriptors, 0, "");
    bounds_.atMost("threads more", after.threads - before.threads, 0, "");
    bounds_.tell("resident before", fmt::format("{:.0f} KiB", before.residentKib));
    if (kSanitized) return;
    bounds_.tell("resident more",
                 fmt::format("{:.0f} KiB", after.residentKib - before.residentKib));
    bounds_.tell("heap before", fmt::format("{:.0f} KiB", before.heapKib));
    bounds_.atMost("heap more", after.heapKib - before.heapKib, kHeapMarginKib, "KiB");
  }

  static double median(std::vector<double> times) {
    if (times.empty()) return 0;
    const auto middle = times.begin() + static_cast<std::ptrdiff_t>(times.size() / 2);
    std::nth_element(times.begin(), middle, times.end());
    return *middle;
  }

  const Options options_;
  const StallClock::time_point begin_ = StallClock::now();
  testing::PrivateSoundServer server_;
  std::optional<Stagehand> stagehand_;
  std::promise<void> stageMayGo_;
  Bounds bounds_;
};

}  // namespace
}  // namespace endpin::soak

int main(int argc, char** argv) {
  endpin::soak::Options options;
  CLI::App arguments("The real screen while its sound system comes and goes");
  arguments.add_option("--minutes", options.minutes, "after a round of each fault")
      ->check(CLI::Range(0.1, 10000.0));
  arguments.add_option("--seed", options.seed, "of faults and presses");
  arguments.add_flag("--verbose", options.verbose, "what the application logs, to standard error");
  try {
    arguments.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return arguments.exit(error) == 0 ? 0 : 2;
  }
  fmt::print("Live soak: {} min, seed {}\n", options.minutes, options.seed);
  return endpin::soak::Live(options).run(argc, argv);
}
