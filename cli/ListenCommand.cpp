#include "cli/ListenCommand.h"

#include "adapters/log/NullLog.h"
#include "adapters/log/StreamLog.h"
#include "cli/CliError.h"

namespace endpin {

int runListen(const ListenOptions& options, Output& output) {
  StreamLog standardError(stderr);
  NullLog nowhere;
  Log& log = options.verbose ? static_cast<Log&>(standardError) : nowhere;
  const StopSignal stop;
  const ListenContext context{options, output, stop, log};
  try {
    if (options.input.empty()) throw CliError(kExitFailure, "no microphone");
    listenToFile(context, options.input, options.realtime);
  } catch (const CliError&) {
    if (!stop.raised()) throw;  // a write that the signal cut short is no failure
  }
  return 0;
}

}  // namespace endpin
