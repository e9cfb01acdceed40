#include "adapters/cubeb/StreamSupervisor.h"

#include <thread>
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
  while (goOn()) {
    keepOpen();
    stream->close();
  }
}

// Decided under the lock, so that an order given meanwhile is either seen or finds no thread.
bool StreamSupervisor::Control::goOn() {
  const std::lock_guard lock(mutex);
  running = !idle();
  if (!running) ended.notify_all();
  return running;
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
    : patience_(patience), control_(std::make_shared<Control>(std::move(stream))) {}

StreamSupervisor::~StreamSupervisor() {
  control_->quit = true;
  control_->stream->checkSoon();
  std::unique_lock lock(control_->mutex);
  control_->ended.wait_for(lock, patience_, [this] { return !control_->running; });
}

void StreamSupervisor::open() {
  if (control_->wanted.exchange(true)) return;
  control_->stream->checkSoon();
  const std::lock_guard lock(control_->mutex);
  if (control_->running) return;
  control_->running = true;
  std::thread([control = control_] { control->run(); }).detach();
}

void StreamSupervisor::close() {
  if (control_->wanted.exchange(false)) control_->stream->checkSoon();
}

}  // namespace endpin
