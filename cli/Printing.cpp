#include "cli/Printing.h"

#include <fmt/format.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <nlohmann/json.hpp>

#include "adapters/cli11/ProgramError.h"
#include "calibration/StringFrequencies.h"

namespace endpin {
namespace {

[[noreturn]] void fail() {
  throw ProgramError(kExitFailure,
                     std::string("output cannot be written: ") + std::strerror(errno));
}

constexpr const char* kGreen = "\x1b[32m";
constexpr const char* kYellow = "\x1b[33m";
constexpr const char* kPlain = "\x1b[0m";

std::string coloured(const std::string& text, const char* colour, TextStyle style) {
  return style.colour ? colour + text + kPlain : text;
}

std::string reading(const TickReport& report) {
  const std::string& frequency = report.freq_label;
  return fmt::format("{:>8}  {:2}", frequency.empty() ? "-" : frequency, report.noteDisplay);
}

std::string lampText(const TickReport& report) {
  return report.inTune() ? "green " : "yellow";
}

std::string lamp(const TickReport& report, TextStyle style) {
  const std::string text = (style.utf8 ? "\u25cf " : "* ") + lampText(report);
  return coloured(text, report.inTune() ? kGreen : kYellow, style);
}

// The lamp tells by its form, too.
std::string verdictText(const TickReport& report, TextStyle style) {
  const char* green = style.utf8 ? "\u25cf" : "*";
  const char* yellow = style.utf8 ? "\u25cb" : "-";
  const std::string mark =
      report.inTune() ? coloured(green, kGreen, style) : coloured(yellow, kYellow, style);
  return fmt::format("{} {:2} {}", mark, report.noteDisplay, report.freq_label);
}

// From silence to full scale in decibels.
std::string levelBar(float power, TextStyle style) {
  constexpr int kCells = 15;
  constexpr double kQuietest = -60;  // decibels below full scale
  const double decibels = 20 * std::log10(std::max(static_cast<double>(power), 1e-6));
  const double share = std::clamp(1 - decibels / kQuietest, 0.0, 1.0);
  const int filled = static_cast<int>(std::lround(share * kCells));
  std::string bar = "[";
  for (int i = 0; i < kCells; ++i) {
    const bool on = i < filled;
    bar += style.utf8 ? (on ? "\u2588" : "\u2591") : (on ? "#" : ".");
  }
  return bar + ']';
}

std::string strings(const TickReport& report, TextStyle style) {
  std::string text;
  for (std::size_t i = 0; i < report.rings.size(); ++i) {
    if (i > 0) text += ' ';
    text += report.rings[i] ? coloured(kStringNotes[i], kGreen, style) : "--";
  }
  return text;
}

std::string beginText(const std::string& microphone, std::int64_t a4) {
  return fmt::format("Listening to {} at A4 = {} Hz. Ctrl-C ends.\n", microphone, a4);
}

bool environmentHas(const char* variable) {
  const char* value = std::getenv(variable);
  return value && *value;
}

// Whether the terminal's character set is UTF-8, as far as the environment tells.
bool terminalIsUtf8() {
  for (const char* variable : {"LC_ALL", "LC_CTYPE", "LANG"}) {
    if (!environmentHas(variable)) continue;
    const std::string value = std::getenv(variable);
    return value.find("UTF-8") != value.npos || value.find("utf8") != value.npos;
  }
  return false;
}

// Beginning of the line; no wrapping in a narrow window; and the reverse.
constexpr const char* kBeginStatus = "\r\x1b[?7l";
constexpr const char* kEndStatus = "\x1b[K\x1b[?7h";

}  // namespace

void Output::write(std::string_view text) {
  if (std::fwrite(text.data(), 1, text.size(), stream_) != text.size()) fail();
}

void Output::flush() {
  if (std::fflush(stream_) != 0) fail();
}

bool Output::isTerminal() const {
  const char* kind = std::getenv("TERM");
  const bool dumb = kind && std::string_view(kind) == "dumb";
  return isatty(fileno(stream_)) != 0 && !dumb;
}

std::size_t Output::columns() const {
  winsize size{};
  const bool known = ioctl(fileno(stream_), TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
  return known ? size.ws_col : 80;
}

TickReport reportTick(std::uint64_t number, const Session& session) {
  const ViewController& screen = session.controller();
  const Reading& reading = screen.lastReading();
  return {.number = number,
          .power = reading.power,
          .frequency = reading.frequency,
          .freq_label = screen.freq_label.text(),
          .noteDisplay = screen.noteDisplay.text(),
          .LEDDisplay = screen.LEDDisplay.image(),
          .rings = {!screen.ring1.image().empty(), !screen.ring2.image().empty(),
                    !screen.ring3.image().empty(), !screen.ring4.image().empty()},
          .beeps = session.beeps(),
          .a4 = screen.calibration().a4InHz()};
}

std::string jsonLine(const TickReport& report) {
  nlohmann::ordered_json line;
  line["time"] = static_cast<double>(report.number) / 10.0;
  line["power"] = report.power;
  line["frequency"] = report.frequency;
  line["freq_label"] = report.freq_label;
  line["noteDisplay"] = report.noteDisplay;
  line["LEDDisplay"] = report.LEDDisplay;
  line["rings"] = report.rings;
  line["beeps"] = report.beeps;
  return line.dump() + '\n';
}

std::string statusText(const TickReport& report, TextStyle style) {
  const auto text = [&report](TextStyle in) {
    return fmt::format("{}  {}  {}  tuned {}  A4 {}", reading(report), lamp(report, in),
                       levelBar(report.power, in), strings(report, in), report.a4);
  };
  const bool fits = text({}).size() <= style.columns;  // plain, a letter is a column
  return fits ? text(style) : verdictText(report, style);
}

std::string changeText(const TickReport& report) {
  return fmt::format("{}  {}  tuned {}", reading(report), lampText(report), strings(report, {}));
}

void JsonPrinter::print(const TickReport& report) {
  output_.write(jsonLine(report));
  if (live_) output_.flush();
}

void ChangePrinter::print(const TickReport& report) {
  std::string text = changeText(report);
  if (text == shown_) return;
  shown_ = std::move(text);
  output_.write(fmt::format("{:6.1f} s  {}\n", static_cast<double>(report.number) / 10.0, shown_));
  if (live_) output_.flush();
}

StatusPrinter::StatusPrinter(Output& output)
    : output_(output), colour_(!environmentHas("NO_COLOR")), utf8_(terminalIsUtf8()) {}

void ChangePrinter::begin(const std::string& microphone, std::int64_t a4) {
  output_.write(beginText(microphone, a4));
  output_.flush();
}

void StatusPrinter::begin(const std::string& microphone, std::int64_t a4) {
  output_.write(beginText(microphone, a4));
}

void StatusPrinter::print(const TickReport& report) {
  output_.write(kBeginStatus + statusText(report, {colour_, utf8_, output_.columns()}) +
                kEndStatus);
  output_.flush();
  onLine_ = true;
}

void StatusPrinter::makeRoom() {
  if (!onLine_) return;
  output_.write("\r\x1b[K");
  output_.flush();
  onLine_ = false;
}

void StatusPrinter::finish() {
  if (onLine_) output_.write("\n");
  onLine_ = false;
  output_.flush();
}

std::unique_ptr<TickPrinter> makeTickPrinter(Output& output, bool json, bool live) {
  if (json) return std::make_unique<JsonPrinter>(output, live);
  if (live && output.isTerminal()) return std::make_unique<StatusPrinter>(output);
  return std::make_unique<ChangePrinter>(output, live);
}

}  // namespace endpin
