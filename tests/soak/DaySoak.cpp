// A day of mixed playing, noise, silence and presses on the virtual clock, every tick judged; what
// the application holds after it, compared with what it held after the first hour.
#include <malloc.h>

#include <CLI/CLI.hpp>
#include <chrono>
#include <vector>

#include "tests/soak/Bounds.h"
#include "tests/soak/DayScript.h"
#include "tests/soak/TickJudge.h"

namespace endpin::soak {
namespace {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool kHeapIsKnown = false;  // the sanitizers have an allocator of their own
#else
constexpr bool kHeapIsKnown = true;
#endif

// Labels whose texts differ in length, rows of the settings that are written late. One call that
// is kept, or a sample block, is more than the hundredth part of it an hour.
constexpr double kHeapMargin = 2048;  // bytes

// Quiet enough for the longest delay, the 15 s of a beep, to have passed.
constexpr int kRestTicks = 200;

class Day {
 public:
  Day(double hours, std::uint32_t seed)
      : ticks_(static_cast<std::uint64_t>(hours * 36000)), script_(world_, seed) {}

  int run() {
    const auto begin = std::chrono::steady_clock::now();
    const std::uint64_t first = std::min<std::uint64_t>(36000, ticks_ / 4);
    play(first);
    const std::size_t heldFirst = rest();
    const double earlyShare = foundShare();
    while (world_.ticks + 36000 < ticks_) {
      play(36000);
      tellHour();
    }
    forgetFound();
    play(ticks_ - std::min(ticks_, world_.ticks));
    const std::size_t heldLast = rest();
    const std::chrono::duration<double> wall = std::chrono::steady_clock::now() - begin;

    report(earlyShare);
    if (kHeapIsKnown) {
      bounds_.tell("heap after the first part", fmt::format("{} bytes", heldFirst));
      bounds_.atMost("heap at the end beyond that",
                     static_cast<double>(heldLast) - static_cast<double>(heldFirst), kHeapMargin,
                     "bytes");
    }
    bounds_.tell("wall time", fmt::format("{:.0f} s, {:.0f} s of sound a second", wall.count(),
                                          world_.runLoop.now() / wall.count()));
    return bounds_.exitCode();
  }

 private:
  // One share a string: bowed in tune and undisturbed, and found.
  struct Found {
    std::uint64_t ticks = 0;
    std::uint64_t found = 0;
  };

  void play(std::uint64_t ticks) {
    for (std::uint64_t i = 0; i < ticks; ++i) {
      step();
      script_.follow(world_.runLoop.now());
    }
  }

  // Silence until every call that waits has come; returns the bytes held then.
  std::size_t rest() {
    script_.rest();
    for (int i = 0; i < kRestTicks; ++i) step();
    stillPending_ = std::max(stillPending_, world_.runLoop.pending());
    return kHeapIsKnown ? mallinfo2().uordblks : 0;
  }

  void step() {
    world_.tick();
    const double now = world_.runLoop.now();
    const std::uint64_t beeps = world_.players.plays() - beeps_;
    beeps_ += beeps;
    note(now, judge_.judge(now, beeps, world_.runLoop.pending()));
    note(now, judgeTone());
    note(now, judgeBlocks());
    if (const int string = script_.stringToBeFound(now)) {
      Found& row = found_[static_cast<std::size_t>(string - 1)];
      ++row.ticks;
      row.found += judge_.string() == string ? 1U : 0U;
    }
  }

  std::string judgeTone() {
    const bool playing = world_.controller.tuningFork().curPlayState == TuningFork::Playing;
    const double peak = world_.output.pull();
    if (playing != world_.output.running()) return "the tuning fork is not what it says";
    return playing && peak < 0.1 ? "the tuning fork is silent" : "";
  }

  std::string judgeBlocks() const {
    const std::uint64_t due = world_.microphone.samples() / kBlockSamples;
    if (world_.microphone.blocks() == due && world_.microphone.lostBlocks() == 0) return {};
    return fmt::format("the listener had {} blocks of {}", world_.microphone.blocks(), due);
  }

  void note(double now, const std::string& complaint) {
    if (complaint.empty()) return;
    constexpr std::uint64_t kTold = 10;
    if (complaints_++ < kTold) fmt::print("  at {:.1f} s: {}\n", now, complaint);
  }

  // Of the A string, whose band holds a bin of the spectrum at every A4, in percent. A part in
  // which it was hardly bowed says nothing: then it counts as found.
  double foundShare() const {
    constexpr std::uint64_t kEnough = 20;  // ticks
    const auto& [ticks, found] = found_[0];
    return ticks < kEnough ? 100 : 100 * static_cast<double>(found) / static_cast<double>(ticks);
  }
  void forgetFound() { found_ = {}; }

  void tellHour() {
    bounds_.tell(fmt::format("hour {:.0f}", world_.runLoop.now() / 3600),
                 fmt::format("{} beeps, {} calls wait, {} bytes", beeps_, world_.runLoop.pending(),
                             kHeapIsKnown ? mallinfo2().uordblks : 0));
  }

  void report(double earlyShare) {
    bounds_.tell("ticks",
                 fmt::format("{}: {} in tune, {} not, {} held, {} cleared", world_.ticks,
                             judge_.matches(), judge_.others(), judge_.holds(), judge_.clears()));
    bounds_.tell("presses", fmt::format("{}", fmt::join(script_.presses(), " ")));
    bounds_.tell("beeps", fmt::format("{}", beeps_));
    bounds_.tell("rating alerts", fmt::format("{}, {} probes", world_.rating.alertsMade,
                                              world_.rating.probes.load()));
    for (std::size_t i = 0; i < found_.size(); ++i) {
      bounds_.tell(fmt::format("last part: {} bowed in tune and found", kStrings[i].noteName),
                   fmt::format("{} of {} ticks", found_[i].found, found_[i].ticks));
    }
    bounds_.atMost("contradictions", static_cast<double>(complaints_), 0, "");
    bounds_.atLeast("A3 in tune and found, first part", earlyShare, 90, "%");
    bounds_.atLeast("A3 in tune and found, last part", foundShare(), 90, "%");
    bounds_.tell("most calls waiting at a time", fmt::format("{}", world_.runLoop.mostPending()));
    bounds_.atMost("calls waiting after 20 s of silence", static_cast<double>(stillPending_), 0,
                   "");
    bounds_.atMost("timers", static_cast<double>(world_.runLoop.timers()), 3, "");
    bounds_.atMost("tone units", world_.output.units(), 1, "");
  }

  const std::uint64_t ticks_;
  DayWorld world_;
  DayScript script_;
  TickJudge judge_{world_.controller, world_.screen};
  Bounds bounds_;
  std::array<Found, 4> found_{};
  std::uint64_t beeps_ = 0;
  std::uint64_t complaints_ = 0;
  std::size_t stillPending_ = 0;
};

}  // namespace
}  // namespace endpin::soak

int main(int argc, char** argv) {
  double hours = 24;
  std::uint32_t seed = 1;
  CLI::App options("A day at the cello on the virtual clock");
  options.add_option("--hours", hours, "of virtual time")->check(CLI::Range(0.05, 1000.0));
  options.add_option("--seed", seed, "of the script");
  try {
    options.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return options.exit(error) == 0 ? 0 : 2;
  }
  fmt::print("Virtual soak: {} h, seed {}\n", hours, seed);
  return endpin::soak::Day(hours, seed).run();
}
