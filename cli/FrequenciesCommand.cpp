#include "cli/CommandLine.h"
#include "cli/Printing.h"

#include <fmt/format.h>

#include <nlohmann/json.hpp>

#include "audio/PitchEstimator.h"
#include "calibration/StringFrequencies.h"
#include "tuner/StringRecognition.h"

namespace endpin {
namespace {

struct StringTable {
  int number;
  const char* note;
  double reference;
  Band band;
  std::vector<SpectrumBin> bins;
};

std::vector<StringTable> tables(std::int64_t a4) {
  std::vector<StringTable> rows;
  int number = 1;
  for (const double reference : stringFrequencies(a4)) {
    const Band band = bandOf(number, {reference, reference});
    const char* note = kStringNotes[static_cast<std::size_t>(number - 1)];
    rows.push_back(
        {number, note, reference, band, PitchEstimator::binsBetween(band.lower, band.upper)});
    ++number;
  }
  return rows;
}

std::string jsonText(std::int64_t a4) {
  nlohmann::ordered_json all;
  all["a4"] = a4;
  all["strings"] = nlohmann::ordered_json::array();
  for (const StringTable& row : tables(a4)) {
    auto bins = nlohmann::ordered_json::array();
    for (const SpectrumBin& bin : row.bins) {
      bins.push_back({{"bin", bin.number}, {"frequency", bin.frequency}});
    }
    all["strings"].push_back({{"string", row.number},
                              {"note", row.note},
                              {"reference", row.reference},
                              {"lower", row.band.lower},
                              {"upper", row.band.upper},
                              {"bins", bins}});
  }
  return all.dump() + '\n';
}

std::string binsText(const std::vector<SpectrumBin>& bins) {
  if (bins.empty()) return "none: this string can never light green at this calibration";
  std::string text;
  for (const SpectrumBin& bin : bins) {
    text += fmt::format("{}{} ({:.4f} Hz)", text.empty() ? "" : ", ", bin.number, bin.frequency);
  }
  return text;
}

std::string plainText(std::int64_t a4) {
  std::string text = fmt::format("A4 = {} Hz\n", a4);
  text += "string  note  reference     in tune, from     to            spectrum bins\n";
  for (const StringTable& row : tables(a4)) {
    text +=
        fmt::format("{:<8}{:<6}{:9.4f} Hz  {:9.4f} Hz      {:9.4f} Hz  {}\n", row.number, row.note,
                    row.reference, row.band.lower, row.band.upper, binsText(row.bins));
  }
  return text;
}

}  // namespace

int runFrequencies(const FrequenciesOptions& options, Output& output) {
  output.write(options.json ? jsonText(options.a4) : plainText(options.a4));
  output.flush();
  return 0;
}

}  // namespace endpin
