// The three ways in which `listen` shows its ticks. Thread: main.
#pragma once

#include <memory>
#include <string>

#include "cli/Output.h"
#include "cli/TickReport.h"

namespace endpin {

class TickPrinter {
 public:
  virtual ~TickPrinter() = default;

  // Listening begins, on the microphone of that name.
  virtual void begin(const std::string& /*microphone*/) {}

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
  void begin(const std::string& microphone) override;
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
