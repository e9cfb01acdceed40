// `listen`: the tuner at work, on the microphone or on a sound file. Thread: main.
#pragma once

#include <string>

#include "adapters/cli11/ProgramError.h"
#include "adapters/posix/StopSignal.h"
#include "cli/CommandLine.h"
#include "cli/Output.h"
#include "ports/Log.h"

namespace endpin {

// What both ways of listening share. Everything outlives the command.
struct ListenContext {
  const ListenOptions& options;
  Output& output;
  const StopSignal& stop;
  Log& log;
};

// Returns the exit code; throws ProgramError.
int runListen(const ListenOptions& options, Output& output);

// Listens to the sound file at `path` from its beginning to its end, or to the stop signal.
// `realtime` paces it by the clock on the wall. Throws ProgramError, also when the sound turns out
// to break off, after listening to what there is.
void listenToFile(const ListenContext& context, const std::string& path, bool realtime);

// There was no microphone to begin with.
class NoMicrophone : public ProgramError {
 public:
  explicit NoMicrophone(const std::string& reason) : ProgramError(kExitFailure, reason) {}
};

// Listens to the microphone until the stop signal; one that goes on the way is waited for. Throws
// NoMicrophone when there is none at the start, ProgramError when the output fails.
void listenToMicrophone(const ListenContext& context);

// Writes the microphones to the output, the default one marked. Throws ProgramError.
void writeInputs(const ListenContext& context);

}  // namespace endpin
