// A day of mixed playing, noise, silence and presses on the virtual clock, every tick judged. What
// the application holds after each hour is compared with what it held after the first.
#include <malloc.h>

#include <CLI/CLI.hpp>
#include <chrono>

#include "tests/soak/DayJudge.h"

namespace endpin::soak {
namespace {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool kHeapIsKnown = false;  // the sanitizers have an allocator of their own
#else
constexpr bool kHeapIsKnown = true;
#endif

// For labels whose texts differ in length and settings that are written late.
constexpr double kHeapMargin = 2048;  // bytes

// A tick without a string waits with two calls for 2 s and 4 s, a tick with a beep for 15 s.
constexpr double kMostPending = 10 * (2 + 4 + 11);

class Day {
 public:
  explicit Day(std::uint32_t seed) : script_(world_, seed) {}

  int run(double hours) {
    const auto begin = std::chrono::steady_clock::now();
    const double part = std::min(1.0, hours / 4);
    double heldFirst = 0;
    double held = 0;
    for (double played = part; played < hours + part / 2; played += part) {
      for (double tick = 0; tick < part * 36000; ++tick) {
        step();
        script_.follow();
      }
      held = rest();
      bounds_.tell(fmt::format("at {:.2f} h", world_.now() / 3600),
                   fmt::format("{} beeps, {:.0f} bytes", world_.players.plays(), held));
      if (heldFirst == 0) heldFirst = held;
    }
    report();
    bounds_.atMost("heap at the end beyond the first part", held - heldFirst, kHeapMargin, "bytes");
    const std::chrono::duration<double> wall = std::chrono::steady_clock::now() - begin;
    bounds_.tell("wall time", fmt::format("{:.0f} s, {:.0f} s of sound a second", wall.count(),
                                          world_.now() / wall.count()));
    return bounds_.exitCode();
  }

 private:
  void step() {
    world_.tick();
    complain(judge_.judge());
  }

  void steps(int count) {
    for (int i = 0; i < count; ++i) step();
  }

  void complain(const std::string& complaint) {
    if (complaint.empty()) return;
    constexpr int kTold = 10;
    if (complaints_++ < kTold) fmt::print("  at {:.1f} s: {}\n", world_.now(), complaint);
  }

  // Silence, an A string and silence again, each long enough for every delayed call. Returns the
  // bytes held in the end.
  double rest() {
    script_.rest();
    steps(200);
    complainUnless(world_.runLoop.pending == 0, "calls still wait in silence");
    script_.play({0.1, kBowed, script_.pitchOf(0)});
    complainUnless(beepsIn(60) > 0, "no beep for a new string");
    complainUnless(beepsIn(90) == 0, "a beep for a string that has beeped");
    complainUnless(beepsIn(50) > 0, "no second beep for a string that goes on");
    script_.rest();
    steps(200);
    complainUnless(world_.runLoop.pending == 0, "calls still wait in silence");
    return kHeapIsKnown ? static_cast<double>(mallinfo2().uordblks) : 0;
  }

  std::uint64_t beepsIn(int count) {
    const std::uint64_t before = world_.players.plays();
    steps(count);
    return world_.players.plays() - before;
  }

  void complainUnless(bool held, const char* complaint) { complain(held ? "" : complaint); }

  void report() {
    const auto& inTune = judge_.inTune();
    bounds_.tell("presses", fmt::format("{}", fmt::join(script_.presses(), " ")));
    bounds_.tell("rating alerts", fmt::format("{}, {} probes", world_.rating.alertsMade,
                                              world_.rating.probes.load()));
    bounds_.tell("ticks", fmt::format("{}, {} of them of a steady loud tone, in tune by string: {}",
                                      world_.ticks, judge_.steady(), fmt::join(inTune, " ")));
    bounds_.atLeast("in tune but A3", static_cast<double>(inTune[1] + inTune[2] + inTune[3]), 1,
                    "ticks");
    bounds_.atMost("contradictions", complaints_, 0);
    bounds_.atMost("blocks lost", static_cast<double>(world_.microphone.queue->lostBlocks()), 0);
    bounds_.atMost("most calls waiting at a time", world_.runLoop.mostPending, kMostPending);
    bounds_.atMost("timers", world_.runLoop.timers, 2);
    bounds_.atMost("tone units", world_.output.units, 1);
  }

  DayWorld world_;
  DayScript script_;
  DayJudge judge_{world_, script_};
  Bounds bounds_;
  int complaints_ = 0;
};

}  // namespace
}  // namespace endpin::soak

int main(int argc, char** argv) {
  double hours = 8;
  std::uint32_t seed = 1;
  CLI::App options("Hours at the cello on the virtual clock");
  options.add_option("--hours", hours, "of virtual time")->check(CLI::Range(0.05, 1000.0));
  options.add_option("--seed", seed, "of the script");
  CLI11_PARSE(options, argc, argv);
  fmt::print("Virtual soak: {} h, seed {}\n", hours, seed);
  return endpin::soak::Day(seed).run(hours);
}
