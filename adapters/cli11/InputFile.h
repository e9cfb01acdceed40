// The sound file that the user named as the microphone. Thread: main.
#pragma once

#include <string>

#include "adapters/cli11/ProgramError.h"
#include "adapters/offline/CapturedSound.h"

namespace endpin {

// Throws ProgramError with kExitUsage for a file that is missing, not readable or no sound.
[[nodiscard]] inline CapturedSound openInputFile(const std::string& path) {
  try {
    return CapturedSound(SoundFile(path));
  } catch (const SoundFileError& error) {
    throw ProgramError(kExitUsage, error.what());
  }
}

}  // namespace endpin
