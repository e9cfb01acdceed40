// What endpin-cli does, a function for each command. They return the exit code and throw
// ProgramError. Thread: main.
#pragma once

#include "cli/CommandLine.h"
#include "cli/Printing.h"

namespace endpin {

// `listen`: the tuner at work, on the microphone until the stop signal, one that goes on the way is
// waited for; or on a sound file from its beginning to its end.
int runListen(const ListenOptions& options, Output& output);

// `frequencies`: the strings' references, their in-tune bands, and the bins of the spectrum that
// lie inside. A string without a bin can never light the lamp at that calibration.
int runFrequencies(const FrequenciesOptions& options, Output& output);

// `tone`: a reference tone as a sound file, sample by sample what the tuning fork plays. A file
// that cannot be finished is not left behind.
int runTone(const ToneOptions& options);

}  // namespace endpin
