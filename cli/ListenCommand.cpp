#include "cli/ListenCommand.h"

#include <fmt/format.h>

#include <chrono>

#include "adapters/cubeb/InputDevices.h"
#include "adapters/log/NullLog.h"
#include "adapters/log/StreamLog.h"

namespace endpin {
namespace {

void listenOrPlayRecording(const ListenContext& context) {
  try {
    listenToMicrophone(context);
  } catch (const NoMicrophone& missing) {
    const std::string& recording = context.options.recording;
    if (recording.empty()) throw;
    fmt::print(stderr, "endpin-cli: {}; listening to a recording\n", missing.what());
    listenToFile(context, recording, true);
  }
}

void run(const ListenContext& context) {
  const ListenOptions& options = context.options;
  if (options.listInputs) {
    writeInputs(context);
  } else if (options.input.empty()) {
    listenOrPlayRecording(context);
  } else {
    listenToFile(context, options.input, options.realtime);
  }
}

}  // namespace

int runListen(const ListenOptions& options, Output& output) {
  StreamLog standardError(stderr);
  NullLog nowhere;
  Log& log = options.verbose ? static_cast<Log&>(standardError) : nowhere;
  const StopSignal stop;
  try {
    run({options, output, stop, log});
  } catch (const ProgramError&) {
    if (!stop.raised()) throw;  // a write that the signal cut short is no failure
  }
  return 0;
}

void writeInputs(const ListenContext& context) {
  const auto inputs =
      listInputs(std::chrono::seconds(3), [&context] { return context.stop.raised(); });
  if (context.stop.raised()) return;
  if (!inputs) throw ProgramError(kExitFailure, "the sound server does not answer");
  if (inputs->empty()) throw ProgramError(kExitFailure, "no microphone");
  for (const InputDevice& input : *inputs) {
    const char* remark = input.isMonitor     ? "  (what a speaker plays)"
                         : input.isPluggedIn ? ""
                                             : "  (not plugged in)";
    context.output.write(fmt::format("{} {}  \"{}\"{}\n", input.isDefault ? '*' : ' ', input.id,
                                     input.name, remark));
  }
  context.output.flush();
}

}  // namespace endpin
