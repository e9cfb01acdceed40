// Judges every tick of the virtual day: keeps its own account of what the screen must show and when
// a beep is due, from nothing but what the listener said, and compares. Thread: main.
#pragma once

#include <array>
#include <cstdint>
#include <deque>
#include <string>

#include "app/ViewController.h"
#include "cli/TerminalScreen.h"

namespace endpin::soak {

class TickJudge {
 public:
  // Both outlive the judge.
  TickJudge(const ViewController& controller, const TerminalScreen& screen)
      : controller_(controller), screen_(screen) {}

  // To be called after each tick with the time (seconds) and what passed since the one before.
  // Returns what contradicts what, or nothing.
  [[nodiscard]] std::string judge(double now, std::uint64_t beeps, std::size_t pendingCalls);

  // The string that the last tick found in tune, 0 for none.
  [[nodiscard]] int string() const { return string_; }
  [[nodiscard]] std::uint64_t clears() const { return clears_; }
  [[nodiscard]] std::uint64_t holds() const { return holds_; }
  [[nodiscard]] std::uint64_t matches() const { return matches_; }
  [[nodiscard]] std::uint64_t others() const { return others_; }

 private:
  // What the player sees of a judgement.
  struct Shown {
    std::string frequency;
    std::string note;
    bool green = false;
    bool operator==(const Shown&) const = default;
  };

  void expectTick(double now);
  void expectMatch(const StringReferences& references);
  void expectNoString(double now, float frequency);
  [[nodiscard]] std::string judgeScreen() const;
  [[nodiscard]] std::string judgeRing() const;
  [[nodiscard]] std::string judgeCalibration() const;
  [[nodiscard]] std::string judgeBeep(double now, std::uint64_t beeps);
  [[nodiscard]] std::string judgePending(std::size_t pendingCalls, std::uint64_t beeps) const;
  // Forgets the beeps that calls due by now have re-armed. Says whether such a call falls on this
  // very instant, where tick and call may come in either order.
  bool rearm(double now);

  const ViewController& controller_;
  const TerminalScreen& screen_;

  Shown expected_;
  Shown lastMatch_;
  int string_ = 0;
  std::array<bool, 4> tuned_{};
  enum class Beeped { No, Yes, Perhaps };
  std::array<Beeped, 4> beeped_{};  // since the last re-arm
  std::deque<double> beepRearms_;   // when calls are due that the judge knows of, by kind
  std::deque<double> noStringRearms_;
  std::deque<double> prompts_;
  std::uint64_t clears_ = 0, holds_ = 0, matches_ = 0, others_ = 0;  // ticks
};

}  // namespace endpin::soak
