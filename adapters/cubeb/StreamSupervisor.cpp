#include "adapters/cubeb/StreamSupervisor.h"

#include <utility>

namespace endpin {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;
using Outcome = SupervisedStream::Outcome;

constexpr auto kCheckInterval = 1s;  // for what the sound system changes without a word
constexpr auto kRetryInterval = 500ms;

}  // namespace

void StreamSupervisor::Control::run() {
  while (!quit) {
    if (wanted) {
      keepOpen();
      stream->close();
    } else {
      stream->wakeUp_.waitUntil(Clock::time_point::max());
    }
  }
}

// A stream that fails is opened anew at once, one that cannot be opened after a while.
void StreamSupervisor::Control::keepOpen() {
  Outcome outcome = Outcome::Missing;
  while (!idle()) {
    const bool wasOpen = outcome == Outcome::Open;
    outcome = wasOpen ? stream->check() : stream->open();
    if (outcome == Outcome::Finished) wanted = false;
    if (outcome == Outcome::Open) stream->wakeUp_.waitUntil(Clock::now() + kCheckInterval);
    if (outcome == Outcome::Missing && !wasOpen) retryLater();
  }
}

// A stream that is not open has nothing to tell: what wakes the thread is an order.
void StreamSupervisor::Control::retryLater() const {
  const auto time = Clock::now() + kRetryInterval;
  while (!idle() && Clock::now() < time) stream->wakeUp_.waitUntil(time);
}

StreamSupervisor::StreamSupervisor(std::shared_ptr<SupervisedStream> stream,
                                   std::chrono::milliseconds patience)
    : patience_(patience), control_(std::make_shared<Control>(std::move(stream))) {
  std::packaged_task<void()> task([control = control_] { control->run(); });
  ended_ = task.get_future();
  thread_ = std::thread(std::move(task));
}

StreamSupervisor::~StreamSupervisor() {
  control_->quit = true;
  control_->stream->checkSoon();
  const bool ended = ended_.wait_for(patience_) == std::future_status::ready;
  ended ? thread_.join() : thread_.detach();
}

void StreamSupervisor::open() {
  if (!control_->wanted.exchange(true)) control_->stream->checkSoon();
}

void StreamSupervisor::close() {
  if (control_->wanted.exchange(false)) control_->stream->checkSoon();
}

}  // namespace endpin
