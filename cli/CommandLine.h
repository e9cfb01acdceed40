// What the user asked for. parseCommandLine() turns the arguments into one of these. Thread: main.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <variant>

#include "adapters/cli11/ProgramError.h"
#include "calibration/ToneSynthesizer.h"

namespace endpin {

struct ListenOptions {
  std::string input;            // sound file in place of the microphone; empty: the microphone
  bool realtime = false;        // paces the sound file by the clock on the wall
  std::string inputDevice;      // name or id of the microphone; empty: the default one
  std::string recording;        // sound file to listen to when there is no microphone; may be empty
  bool listInputs = false;      // lists the microphones, and nothing else
  bool json = false;            // one JSON object a tick
  bool fine = false;            // with fine hearing, whatever was saved
  bool verbose = false;         // the platform log goes to standard error
  std::filesystem::path store;  // the settings; empty: in memory only
  std::optional<std::int64_t> a4;  // hertz, as if saved in an earlier run; then in memory only
};

struct FrequenciesOptions {
  std::int64_t a4 = 440;  // hertz
  bool json = false;
};

// The reference tone of a string, through the speaker or as a sound file.
struct ToneOptions {
  std::size_t string = 0;  // 0 to 3, from the highest
  std::int64_t a4 = 440;   // hertz
  ToneSynthesizer::Waveform waveform = ToneSynthesizer::Square;
  std::uint64_t frames = 0;  // length, of 44100 a second; 0: until the stop signal
  std::string output;        // file to write; empty: the speaker
};

using Command = std::variant<ListenOptions, FrequenciesOptions, ToneOptions, PrintText>;

// Throws ProgramError with exit code 2 when the arguments make no command.
[[nodiscard]] Command parseCommandLine(int argc, const char* const* argv);

// A4 in whole hertz, 1 to 9999. Throws ProgramError.
[[nodiscard]] std::int64_t parseA4(const std::string& text);

// What endpin-cli does, a function for each command. They return the exit code and throw
// ProgramError.

class Output;

// `listen`: the tuner at work, on the microphone until the stop signal, one that goes on the way is
// waited for; or on a sound file from its beginning to its end.
int runListen(const ListenOptions& options, Output& output);

// `frequencies`: the strings' references, their in-tune bands, and the bins of the spectrum that
// lie inside. A string without a bin can never light the lamp at that calibration.
int runFrequencies(const FrequenciesOptions& options, Output& output);

// `tone`: a reference tone through the speaker, until its length or the stop signal; or as a sound
// file, sample by sample what the tuning fork plays. A file that cannot be finished is not left
// behind.
int runTone(const ToneOptions& options);

}  // namespace endpin
