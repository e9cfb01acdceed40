#include "cli/TickReport.h"

#include <nlohmann/json.hpp>

namespace endpin {

TickReport reportTick(std::uint64_t number, const Session& session) {
  const TerminalScreen& screen = session.screen();
  const Reading& reading = session.controller().lastReading();
  TickReport report{.number = number,
                    .power = reading.power,
                    .frequency = reading.frequency,
                    .freq_label = screen.freq_label.text(),
                    .noteDisplay = screen.noteDisplay.text(),
                    .LEDDisplay = screen.LEDDisplay.image(),
                    .beeps = session.beeps()};
  for (std::size_t i = 0; i < report.rings.size(); ++i) {
    report.rings[i] = !screen.rings[i].image().empty();
  }
  return report;
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

}  // namespace endpin
