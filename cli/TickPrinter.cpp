#include "cli/TickPrinter.h"

#include <fmt/format.h>

#include <cstdlib>

#include "cli/StatusText.h"

namespace endpin {
namespace {

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

void StatusPrinter::begin(const std::string& microphone) {
  output_.write(fmt::format("Listening to {}. Ctrl-C ends.\n", microphone));
}

void StatusPrinter::print(const TickReport& report) {
  output_.write(kBeginStatus + statusText(report, {colour_, utf8_}) + kEndStatus);
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
