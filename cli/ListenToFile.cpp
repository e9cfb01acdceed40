#include <chrono>

#include "adapters/cli11/InputFile.h"
#include "adapters/offline/FileMicrophone.h"
#include "cli/ListenCommand.h"
#include "cli/TickPrinter.h"

namespace endpin {

void listenToFile(const ListenContext& context, const std::string& path, bool realtime) {
  CapturedSound sound = openInputFile(path);
  VirtualRunLoop runLoop;
  FileMicrophone microphone(sound, runLoop);
  Session session({microphone, runLoop, context.log, context.options.a4});
  const auto printer = makeTickPrinter(context.output, context.options.json, realtime);

  session.start();
  const auto begin = std::chrono::steady_clock::now();
  // A tick that falls on the very end of the file still takes place.
  for (std::uint64_t tick = 1; sound.lastsFor(tick); ++tick) {
    const auto due = begin + std::chrono::milliseconds(100) * tick;
    if (realtime ? context.stop.waitUntil(due) : context.stop.raised()) break;
    runLoop.runUntil(static_cast<double>(tick) * 0.1);
    printer->print(reportTick(tick, session));
  }
  printer->finish();
  if (!context.stop.raised() && sound.truncated()) {
    throw ProgramError(kExitFailure, path + ": the sound breaks off before its end");
  }
}

}  // namespace endpin
