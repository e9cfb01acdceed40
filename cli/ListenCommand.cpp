// `listen`, on a sound file or on the microphone.
#include <fmt/format.h>

#include <chrono>
#include <memory>
#include <optional>

#include "adapters/cli11/ParseArguments.h"
#include "adapters/cubeb/CubebMicrophone.h"
#include "adapters/cubeb/CubebOutput.h"
#include "adapters/cubeb/InputDevices.h"
#include "adapters/log/Logs.h"
#include "adapters/offline/FileMicrophone.h"
#include "adapters/offline/MemoryStore.h"
#include "adapters/posix/MainRunLoop.h"
#include "adapters/posix/StopSignal.h"
#include "adapters/pulse/DesktopMicrophones.h"
#include "adapters/sqlite/SqliteStore.h"
#include "cli/CommandLine.h"
#include "cli/Printing.h"

namespace endpin {
namespace {

using State = MicrophoneStatus::State;

constexpr auto kOpeningLimit = std::chrono::seconds(3);

// What all ways of listening share. Everything outlives the command.
struct ListenContext {
  const ListenOptions& options;
  Output& output;
  const StopSignal& stop;
  Log& log;
  SettingsStore& settings;
};

// There was no microphone to begin with.
class NoMicrophone : public ProgramError {
 public:
  explicit NoMicrophone(const std::string& reason) : ProgramError(kExitFailure, reason) {}
};

// To the end of the file or the stop signal; `realtime` paces it by the clock on the wall. Throws
// ProgramError, also when the sound turns out to break off, after listening to what there is.
void listenToFile(const ListenContext& context, const std::string& path, bool realtime) {
  CapturedSound sound = openInputFile(path);
  VirtualRunLoop runLoop;
  FileMicrophone microphone(sound, runLoop);
  Session session({.microphone = microphone,
                   .runLoop = runLoop,
                   .settings = context.settings,
                   .log = context.log,
                   .fine = context.options.fine});
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

// Shows the ticks of a live session, and what becomes of its microphone.
class LiveView {
 public:
  LiveView(const ListenContext& context, const CubebMicrophone& microphone, const Session& session)
      : microphone_(microphone),
        session_(session),
        printer_(makeTickPrinter(context.output, context.options.json, true)) {}

  // After each tick. The first one shown is the first with a microphone.
  void tick() {
    const MicrophoneStatus status = microphone_.status();
    if (!wasOpen_ && !waitForOpening(status)) return;
    followTrouble(status);
    printer_->print(reportTick(++ticks_, session_));
  }

  void finish() { printer_->finish(); }

 private:
  using Clock = std::chrono::steady_clock;

  // Whether the microphone is open now; throws when it will not be, in the words of the screen,
  // which come half a second after the fact.
  bool waitForOpening(const MicrophoneStatus& status) {
    wasOpen_ = status.state == State::Open;
    if (wasOpen_) {
      printer_->begin(status.text, session_.controller().calibration().a4InHz());
    } else if (status.state == State::Missing && !trouble().empty()) {
      throw NoMicrophone(fmt::format("{} ({})", trouble(), status.text));
    } else if (Clock::now() > begin_ + kOpeningLimit) {
      throw NoMicrophone("the sound server does not answer");
    }
    return wasOpen_;
  }

  // What is wrong with the microphone and its remedy; empty when nothing is.
  [[nodiscard]] std::string trouble() const {
    const ViewController& screen = session_.controller();
    const std::string& title = screen.troubleTitle.text();
    return title.empty() ? title : title + ": " + screen.troubleRemedy.text();
  }

  // Says once why nothing can be heard, in the words of the screen, and once that it is over.
  void followTrouble(const MicrophoneStatus& status) {
    if (trouble() == told_) return;
    told_ = trouble();
    printer_->makeRoom();
    fmt::print(stderr, "endpin-cli: {}\n",
               told_.empty() ? "listening again: " + status.text : told_);
  }

  const CubebMicrophone& microphone_;
  const Session& session_;
  const std::unique_ptr<TickPrinter> printer_;
  const Clock::time_point begin_ = Clock::now();
  std::uint64_t ticks_ = 0;
  bool wasOpen_ = false;
  std::string told_;  // the trouble, as told last
};

// Throws NoMicrophone when there is none at the start, ProgramError when the output fails.
void listenToMicrophone(const ListenContext& context) {
  MainRunLoop runLoop;
  const SoundServer server;
  CubebMicrophone microphone(context.options.inputDevice, context.log);
  DesktopMicrophones microphones(server, microphone, context.options.inputDevice);
  CubebPlayers speaker;
  Session session({.microphone = microphone,
                   .runLoop = runLoop,
                   .settings = context.settings,
                   .log = context.log,
                   .microphones = &microphones,
                   .fine = context.options.fine,
                   .players = &speaker});
  LiveView view(context, microphone, session);
  session.start();
  // Made after the application's own timers, so that it runs right after each tick.
  runLoop.scheduleTimer(0.1, [&view] { view.tick(); });
  runLoop.run(context.stop.descriptor());
  view.finish();
}

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

// The microphones, the default one marked.
void writeInputs(Output& output, const StopSignal& stop) {
  const auto inputs = listInputs(std::chrono::seconds(3), [&stop] { return stop.raised(); });
  if (stop.raised()) return;
  if (!inputs) throw ProgramError(kExitFailure, "the sound server does not answer");
  if (inputs->empty()) throw ProgramError(kExitFailure, "no microphone");
  for (const InputDevice& input : *inputs) {
    const char* remark = input.isMonitor     ? "  (what a speaker plays)"
                         : input.isPluggedIn ? ""
                                             : "  (not plugged in)";
    output.write(fmt::format("{} {}  \"{}\"{}\n", input.isDefault ? '*' : ' ', input.id, input.name,
                             remark));
  }
  output.flush();
}

// What is wrong with a file of settings is worth a line whether or not the log is.
std::unique_ptr<SettingsStore> openSettings(const ListenOptions& options, Log& problems) {
  if (!options.store.empty()) return std::make_unique<SqliteStore>(options.store, problems);
  auto settings = std::make_unique<MemoryStore>();
  if (options.a4) saveEarlierRun(*settings, *options.a4);
  return settings;
}

void listen(const ListenOptions& options, Output& output, const StopSignal& stop) {
  StreamLog standardError(stderr);
  NullLog nowhere;
  Log& log = options.verbose ? static_cast<Log&>(standardError) : nowhere;
  const auto settings = openSettings(options, standardError);
  const ListenContext context{options, output, stop, log, *settings};
  if (options.input.empty()) {
    listenOrPlayRecording(context);
  } else {
    listenToFile(context, options.input, options.realtime);
  }
}

}  // namespace

int runListen(const ListenOptions& options, Output& output) {
  const StopSignal stop;
  try {
    if (options.listInputs) {
      writeInputs(output, stop);
    } else {
      listen(options, output, stop);
    }
  } catch (const ProgramError&) {
    if (!stop.raised()) throw;  // a write that the signal cut short is no failure
  }
  return 0;
}

}  // namespace endpin
