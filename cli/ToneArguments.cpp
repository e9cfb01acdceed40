#include "cli/ToneArguments.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

#include "adapters/cli11/ProgramError.h"
#include "calibration/StringFrequencies.h"

namespace endpin {
namespace {

constexpr std::array<const char*, 4> kWaveformNames = {"sine", "triangle", "sawtooth", "square"};
constexpr double kMostSeconds = 3600;

[[noreturn]] void reject(const char* option, const char* expected, const std::string& text) {
  throw ProgramError(kExitUsage, fmt::format("{} takes {}, not \"{}\"", option, expected, text));
}

// Place of `text` among the names, or their number.
std::size_t placeOf(const std::string& text, const std::array<const char*, 4>& names) {
  return static_cast<std::size_t>(std::find(names.begin(), names.end(), text) - names.begin());
}

std::size_t parseString(const std::string& text) {
  const std::size_t place = placeOf(text, kStringNotes);
  if (place == kStringNotes.size()) reject("--string", "A3, D3, G2 or C2", text);
  return place;
}

ToneSynthesizer::Waveform parseWaveform(const std::string& text) {
  const std::size_t place = placeOf(text, kWaveformNames);
  if (place == kWaveformNames.size()) {
    reject("--waveform", "sine, triangle, sawtooth or square", text);
  }
  return static_cast<ToneSynthesizer::Waveform>(place);
}

// Whatever the locale, the point is a point.
std::uint64_t parseFrames(const std::string& text) {
  double seconds = 0;
  const char* end = text.data() + text.size();
  const auto [rest, error] = std::from_chars(text.data(), end, seconds);
  const bool isNumber = error == std::errc() && rest == end;
  const double frames = std::round(seconds * ToneSynthesizer::kSampleRate);
  if (!isNumber || !(frames >= 1) || !(seconds <= kMostSeconds)) {
    reject("--seconds", "a number above 0, at most 3600", text);
  }
  return static_cast<std::uint64_t>(frames);
}

}  // namespace

ToneOptions toneOptions(const ToneArguments& texts) {
  ToneOptions options;
  options.string = parseString(texts.string);
  options.waveform = parseWaveform(texts.waveform);
  options.frames = parseFrames(texts.seconds);
  options.output = texts.output;
  return options;
}

}  // namespace endpin
