#include <fmt/format.h>

#include <chrono>
#include <optional>

#include "adapters/cubeb/CubebMicrophone.h"
#include "adapters/cubeb/CubebPlayers.h"
#include "adapters/posix/MainRunLoop.h"
#include "cli/ListenCommand.h"
#include "cli/TickPrinter.h"

namespace endpin {
namespace {

using State = MicrophoneStatus::State;

constexpr auto kOpeningLimit = std::chrono::seconds(3);

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
    follow(status);
    printer_->print(reportTick(++ticks_, session_));
  }

  void finish() { printer_->finish(); }

 private:
  using Clock = std::chrono::steady_clock;

  // Whether the microphone is open now; throws when it will not be.
  bool waitForOpening(const MicrophoneStatus& status) {
    if (status.state == State::Missing) throw NoMicrophone(status.text);
    wasOpen_ = isOpen_ = status.state == State::Open;
    if (wasOpen_) printer_->begin(status.text);
    if (!wasOpen_ && Clock::now() > begin_ + kOpeningLimit) {
      throw NoMicrophone("the sound server does not answer");
    }
    return wasOpen_;
  }

  // Says once when the microphone goes, and once when it comes back. A server that stands still
  // shows in its silence before it shows in the status.
  void follow(const MicrophoneStatus& status) {
    const bool open = status.state == State::Open;
    if (open == isOpen_) return;
    isOpen_ = open;
    printer_->makeRoom();
    if (open) {
      fmt::print(stderr, "endpin-cli: the microphone is back: {}\n", status.text);
    } else {
      fmt::print(stderr, "endpin-cli: the microphone is gone; waiting for it\n");
    }
  }

  const CubebMicrophone& microphone_;
  const Session& session_;
  const std::unique_ptr<TickPrinter> printer_;
  const Clock::time_point begin_ = Clock::now();
  std::uint64_t ticks_ = 0;
  bool wasOpen_ = false;
  bool isOpen_ = false;
};

}  // namespace

void listenToMicrophone(const ListenContext& context) {
  MainRunLoop runLoop;
  CubebMicrophone microphone(context.options.inputDevice, context.log);
  CubebPlayers speaker;
  Session session({microphone, runLoop, context.log, context.options.a4, &speaker});
  LiveView view(context, microphone, session);
  session.start();
  // Made after the application's own timers, so that it runs right after each tick.
  runLoop.scheduleTimer(0.1, [&view] { view.tick(); });
  runLoop.run(context.stop.descriptor());
  view.finish();
}

}  // namespace endpin
