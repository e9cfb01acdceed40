#include "cli/CommandLine.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>
#include <cmath>

#include "adapters/cli11/ParseArguments.h"
#include "adapters/sqlite/SqliteStore.h"
#include "calibration/StringFrequencies.h"

namespace endpin {
namespace {

constexpr std::int64_t kLowestA4 = 1;
constexpr std::int64_t kHighestA4 = 9999;

struct ToneArguments {
  std::string string;
  std::string waveform = "square";
  std::string seconds;
  std::string output;
};

constexpr std::array<const char*, 4> kWaveformNames = {"sine", "triangle", "sawtooth", "square"};
constexpr double kMostSeconds = 3600;

[[noreturn]] void reject(const char* option, const char* expected, const std::string& text) {
  rejectArguments(fmt::format("{} takes {}, not \"{}\"", option, expected, text));
}

// Place of `text` among the names, or their number.
std::size_t placeOf(const std::string& text, const std::array<const char*, 4>& names) {
  return static_cast<std::size_t>(std::find(names.begin(), names.end(), text) - names.begin());
}

std::size_t parseString(const std::string& text) {
  std::string note = text;
  std::transform(note.begin(), note.end(), note.begin(),
                 [](unsigned char letter) { return static_cast<char>(std::toupper(letter)); });
  const std::size_t place = placeOf(note, kStringNotes);
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

// Leaves the calibration at its default.
ToneOptions toneOptions(const ToneArguments& texts) {
  ToneOptions options;
  options.string = parseString(texts.string);
  options.waveform = parseWaveform(texts.waveform);
  options.output = texts.output;
  if (!texts.seconds.empty()) options.frames = parseFrames(texts.seconds);
  if (!options.output.empty() && options.frames == 0) rejectArguments("--output needs --seconds");
  return options;
}

// The texts of A4 are read after parsing: the parser's own conversions report in words of its own.
struct Arguments {
  ListenOptions listen;
  FrequenciesOptions frequencies;
  ToneArguments tone;
  std::string a4;
  std::string store;
};

void addListen(CLI::App& app, Arguments& into) {
  CLI::App* listen = app.add_subcommand("listen", "Listen, and say which string is in tune");
  ListenOptions& options = into.listen;
  auto* input = listen->add_option("--input", options.input,
                                   "Listen to a sound file (wav, flac, ogg, mp3, or headerless "
                                   ".s16 at 7019.5 Hz) instead of the microphone");
  listen->add_flag("--realtime", options.realtime, "Play the sound file at its own pace")
      ->needs(input);
  auto* device = listen->add_option("--input-device", options.inputDevice,
                                    "Microphone to use, by name or id (see --list-inputs)");
  listen
      ->add_option("--or-recording", options.recording,
                   "Sound file to listen to when there is no microphone")
      ->excludes(input);
  listen->add_flag("--list-inputs", options.listInputs, "List the microphones and end");
  auto* store = listen->add_option("--store", into.store,
                                   "File to keep the settings in; with --input none is kept "
                                   "unless it is named");
  listen
      ->add_option("--a4", into.a4,
                   "Calibration in whole hertz, for this run; the settings are left alone")
      ->excludes(store->type_name("PATH"));
  listen->add_flag("--json", options.json, "Print a JSON object for each tick");
  listen->add_flag("--fine", options.fine,
                   "Listen with fine hearing: every string at any calibration, also through a "
                   "microphone without bass, but not in loud noise");
  listen->add_flag("--verbose", options.verbose, "Write the log to standard error");
  device->excludes(input);
}

CLI::App* addFrequencies(CLI::App& app, Arguments& into) {
  CLI::App* frequencies =
      app.add_subcommand("frequencies", "Show the strings' frequencies and what counts as in tune");
  frequencies->add_option("--a4", into.a4, "Calibration in whole hertz (440)");
  frequencies->add_flag("--json", into.frequencies.json, "Print one JSON object");
  return frequencies;
}

CLI::App* addTone(CLI::App& app, Arguments& into) {
  CLI::App* tone =
      app.add_subcommand("tone", "Play the reference tone of a string, or write it to a file");
  ToneArguments& texts = into.tone;
  tone->add_option("--string", texts.string, "A3, D3, G2 or C2")->required();
  tone->add_option("--a4", into.a4, "Calibration in whole hertz (440)");
  tone->add_option("--waveform", texts.waveform, "sine, triangle, sawtooth or square (square)");
  tone->add_option("--seconds", texts.seconds,
                   "Length; fractions are allowed. Without it the "
                   "speaker plays until Ctrl-C");
  tone->add_option("--output", texts.output,
                   "Sound file to write (wav, 44100 Hz, stereo) instead of playing");
  return tone;
}

// The microphone has the screen's settings, unless this run has its own; a sound file has none, so
// that what it prints depends on nothing else.
std::filesystem::path storeOf(const Arguments& arguments) {
  if (!arguments.store.empty()) return arguments.store;
  const ListenOptions& listen = arguments.listen;
  return listen.input.empty() && !listen.a4 ? defaultStorePath() : std::filesystem::path();
}

}  // namespace

std::int64_t parseA4(const std::string& text) {
  std::int64_t a4 = 0;
  const char* end = text.data() + text.size();
  const auto [rest, error] = std::from_chars(text.data(), end, a4);
  if (error != std::errc() || rest != end || a4 < kLowestA4 || a4 > kHighestA4) {
    rejectArguments(fmt::format("--a4 takes whole hertz from {} to {}, not \"{}\"", kLowestA4,
                                kHighestA4, text));
  }
  return a4;
}

namespace {

// The parser would only say that a command is missing.
void rejectUnknownCommand(const CLI::App& app, int argc, const char* const* argv) {
  const std::string first = argc > 1 ? argv[1] : "-";
  const auto commands = app.get_subcommands([](const CLI::App*) { return true; });
  const bool known = std::any_of(commands.begin(), commands.end(), [&](const CLI::App* command) {
    return command->get_name() == first;
  });
  if (known || first.starts_with('-')) return;
  rejectArguments(fmt::format(
      "there is no command \"{}\", only listen, frequencies and tone (--help explains)", first));
}

}  // namespace

Command parseCommandLine(int argc, const char* const* argv) {
  Arguments arguments;
  CLI::App app("Endpin, a tuner for the cello, in the terminal", "endpin-cli");
  app.set_version_flag("--version", "endpin-cli " ENDPIN_VERSION);
  app.require_subcommand(1);
  addListen(app, arguments);
  const CLI::App* frequencies = addFrequencies(app, arguments);
  const CLI::App* tone = addTone(app, arguments);
  rejectUnknownCommand(app, argc, argv);
  if (const auto text = parseArguments(app, argc, argv)) return *text;
  const CLI::App& chosen = *app.get_subcommands().front();
  rejectEmptyTexts(chosen);
  const bool a4Given = chosen.count("--a4") > 0;
  if (frequencies->parsed()) {
    if (a4Given) arguments.frequencies.a4 = parseA4(arguments.a4);
    return arguments.frequencies;
  }
  if (tone->parsed()) {
    ToneOptions options = toneOptions(arguments.tone);
    if (a4Given) options.a4 = parseA4(arguments.a4);
    return options;
  }
  if (a4Given) arguments.listen.a4 = parseA4(arguments.a4);
  arguments.listen.store = storeOf(arguments);
  return arguments.listen;
}

}  // namespace endpin
