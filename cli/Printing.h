// What `listen` prints: standard output, what the application shows after a tick, and the three
// ways to show it. Thread: main.
#pragma once

#include <array>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <string_view>

#include "cli/Session.h"

namespace endpin {

// Standard output as a place where writing can fail.
class Output {
 public:
  explicit Output(std::FILE* stream) : stream_(stream) {}

  // Both throw ProgramError when the text cannot be written, a closed pipe included.
  void write(std::string_view text);
  void flush();

  // Whether it can be written over in place.
  [[nodiscard]] bool isTerminal() const;
  // Width of the terminal; 80 where it is not known.
  [[nodiscard]] std::size_t columns() const;

 private:
  std::FILE* stream_;
};

// What the application shows after one tick.
struct TickReport {
  std::uint64_t number = 0;  // of the tick; ten are a second
  float power = 0;           // linear level
  float frequency = 0;       // hertz, as measured
  std::string freq_label;
  std::string noteDisplay;
  std::string LEDDisplay;       // name of the picture
  std::array<bool, 4> rings{};  // shown, by string
  std::uint64_t beeps = 0;      // so far
  std::int64_t a4 = 0;          // hertz, in force

  [[nodiscard]] bool inTune() const { return LEDDisplay.starts_with("green"); }
};

[[nodiscard]] TickReport reportTick(std::uint64_t number, const Session& session);

// One line of JSON, with its end.
[[nodiscard]] std::string jsonLine(const TickReport& report);

struct TextStyle {
  bool colour = false;
  bool utf8 = false;
  std::size_t columns = 80;
};

// Frequency, note, lamp, level, the strings tuned so far and A4, on one line without its end; where
// they do not fit, lamp, note and frequency in twelve columns.
[[nodiscard]] std::string statusText(const TickReport& report, TextStyle style);

// The same in plain letters without the level, which never stands still.
[[nodiscard]] std::string changeText(const TickReport& report);

class TickPrinter {
 public:
  virtual ~TickPrinter() = default;

  // Listening begins, on the microphone of that name, at that A4 in hertz.
  virtual void begin(const std::string& /*microphone*/, std::int64_t /*a4*/) {}

  // Throws ProgramError when it cannot be written.
  virtual void print(const TickReport& report) = 0;

  // Something else is about to be written to the terminal: leaves the cursor at a free line.
  virtual void makeRoom() {}

  // After the last tick.
  virtual void finish() = 0;
};

// A JSON object a tick. `live` lines go out at once; others when it suits.
class JsonPrinter : public TickPrinter {
 public:
  JsonPrinter(Output& output, bool live) : output_(output), live_(live) {}
  void print(const TickReport& report) override;
  void finish() override { output_.flush(); }

 private:
  Output& output_;
  const bool live_;
};

// A line whenever what the tuner shows has changed.
class ChangePrinter : public TickPrinter {
 public:
  ChangePrinter(Output& output, bool live) : output_(output), live_(live) {}
  void begin(const std::string& microphone, std::int64_t a4) override;
  void print(const TickReport& report) override;
  void finish() override { output_.flush(); }

 private:
  Output& output_;
  const bool live_;
  std::string shown_;
};

// One line on a terminal, refreshed in place.
class StatusPrinter : public TickPrinter {
 public:
  explicit StatusPrinter(Output& output);
  void begin(const std::string& microphone, std::int64_t a4) override;
  void print(const TickReport& report) override;
  void makeRoom() override;
  void finish() override;

 private:
  Output& output_;
  const bool colour_;
  const bool utf8_;
  bool onLine_ = false;  // whether the status line is what the cursor stands on
};

// The one that suits the options and what standard output is.
[[nodiscard]] std::unique_ptr<TickPrinter> makeTickPrinter(Output& output, bool json, bool live);

}  // namespace endpin
