// `tone`: a reference tone as a sound file, sample by sample what the tuning fork plays.
// Thread: main.
#pragma once

#include "cli/CommandLine.h"

namespace endpin {

// Returns the exit code; throws ProgramError. A file that cannot be finished is not left behind.
int runTone(const ToneOptions& options);

}  // namespace endpin
