// The arguments of a program, read by CLI11 and reported in our own way: whatever is wrong with
// them is a ProgramError with kExitUsage. Thread: main.
#pragma once

#include <optional>
#include <string>

#include "adapters/cli11/ProgramError.h"
#include "adapters/offline/CapturedSound.h"

namespace CLI {
class App;
}

namespace endpin {

// Fills what `app` was told to fill; text when help or the version was asked for.
[[nodiscard]] std::optional<PrintText> parseArguments(CLI::App& app, int argc,
                                                      const char* const* argv);

[[noreturn]] void rejectArguments(const std::string& message);

// Rejects options that were given an empty text, `app` being what has the options.
void rejectEmptyTexts(const CLI::App& app);

// The sound file that the user named as the microphone. One that is missing, not readable or no
// sound is rejected.
[[nodiscard]] inline CapturedSound openInputFile(const std::string& path) {
  try {
    return CapturedSound(SoundFile(path));
  } catch (const SoundFileError& error) {
    rejectArguments(error.what());
  }
}

}  // namespace endpin
