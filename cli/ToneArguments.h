// The arguments of `tone`, as typed and as meant. Thread: main.
#pragma once

#include <string>

#include "cli/CommandLine.h"

namespace endpin {

struct ToneArguments {
  std::string string;
  std::string waveform = "square";
  std::string seconds;
  std::string output;
};

// Leaves the calibration at its default. Throws ProgramError.
[[nodiscard]] ToneOptions toneOptions(const ToneArguments& texts);

}  // namespace endpin
