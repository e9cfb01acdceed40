// Who plays the tone of the live soak and takes its sound system apart and puts it together again,
// in seeded random order, and takes the times. Works on a thread of its own: nothing of it may hold
// up the screen, whose thread is watched. Thread: the one that makes it, which owns the server and
// the players.
#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "tests/soak/Dice.h"
#include "tests/soak/LiveScreen.h"
#include "tests/soak/ProcessSize.h"
#include "tests/support/PrivateSoundServer.h"

namespace endpin::soak {

// How long it took from the end of a fault, in seconds, until …
struct Recovery {
  std::vector<double> level;    // … the listener heard a sound again that it had lost
  std::vector<double> pitch;    // … it told the pitch of a new tone
  std::vector<double> speaker;  // … the tuning fork sounded again
};

class Stagehand {
 public:
  // Both outlive the stagehand; the server runs.
  Stagehand(testing::PrivateSoundServer& server, LiveScreen& screen, std::uint32_t seed);

  // Faults for that long, after one round of each to warm up.
  void work(double seconds);

  struct Fault {
    const char* name;
    double shortest, longest;  // seconds
    bool losesSpeaker;         // and nothing else
    void (Stagehand::*begin)();
    bool (Stagehand::*end)();
  };
  static const std::vector<Fault>& faults();

  [[nodiscard]] const std::vector<Recovery>& recoveries() const { return recoveries_; }
  [[nodiscard]] const ProcessSize& sizeBefore() const { return sizeBefore_; }
  [[nodiscard]] const ProcessSize& sizeAfter() const { return sizeAfter_; }
  // What did not happen that had to. Each was printed.
  [[nodiscard]] int failures() const { return failures_; }

 private:
  using Clock = std::chrono::steady_clock;
  using Condition = std::function<bool()>;

  void round(std::size_t which);
  void takeTimes(const Fault& fault, Recovery& recovery, bool lost);
  ProcessSize sizeAtRest();

  void startTone();
  [[nodiscard]] bool hearsLevel() const { return screen_.level() > 0.01; }
  [[nodiscard]] bool hearsPitch() const;
  // Seconds until it holds, or nothing after ten.
  static std::optional<double> until(const Condition& holds, Clock::time_point since);
  void expect(bool held, const char* what);

  void kill() { server_.kill(); }
  bool restart() { return server_.start(); }
  void freeze() { server_.freeze(); }
  bool thaw() {
    server_.thaw();
    return true;
  }
  void removeMicrophone() { expect(server_.removeMicrophone(), "the microphone goes"); }
  bool addMicrophone() { return server_.addMicrophone(); }
  void removeSpeaker() { expect(server_.removeSpeaker(), "the speaker goes"); }
  bool addSpeaker() { return server_.addSpeaker(); }

  testing::PrivateSoundServer& server_;
  LiveScreen& screen_;
  Dice dice_;
  std::unique_ptr<testing::ChildProcess> player_;
  std::size_t string_ = 0;  // that is played
  std::vector<Recovery> recoveries_;
  ProcessSize sizeBefore_;
  ProcessSize sizeAfter_;
  int failures_ = 0;
};

}  // namespace endpin::soak
