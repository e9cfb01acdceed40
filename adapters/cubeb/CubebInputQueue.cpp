#include "adapters/cubeb/CubebInputQueue.h"

#include <fmt/format.h>

#include <exception>
#include <utility>

namespace endpin {
namespace {

using namespace std::chrono_literals;

constexpr auto kPullInterval = 25ms;
constexpr auto kFirstSound = 3s;     // some devices take their time to begin
constexpr auto kNextSound = 1500ms;  // silence has samples too: none at all means a dead stream

}  // namespace

CubebInputQueue::CubebInputQueue(std::shared_ptr<DeviceKeeper> keeper, Log& log,
                                 AudioInputCallback callback, void* userData)
    : CaptureQueue(callback, userData),
      keeper_(std::move(keeper)),
      log_(log),
      captured_(8192),
      thread_([this] { run(); }) {}

CubebInputQueue::~CubebInputQueue() {
  {
    const std::lock_guard lock(mutex_);
    quit_ = true;
  }
  wake_.notify_one();
  thread_.join();
}

AudioStatus CubebInputQueue::start() {
  const AudioStatus status = CaptureQueue::start();
  keeper_->open();
  return status;
}

// A block that is still to be completed needs its device; then that stays open.
AudioStatus CubebInputQueue::stop(bool immediate) {
  if (immediate) keeper_->close();
  return CaptureQueue::stop(immediate);
}

void CubebInputQueue::run() {
  std::unique_lock lock(mutex_);
  while (!wake_.wait_for(lock, kPullInterval, [this] { return quit_; })) {
    lock.unlock();
    follow(keeper_->feed());
    if (feed_ && feed_->failed) lose();
    if (feed_) pull();
    writeNews();
    lock.lock();
  }
}

// A new stream begins anew: nothing of the old one may run into it.
void CubebInputQueue::follow(std::shared_ptr<CaptureFeed> feed) {
  if (feed == feed_) return;
  if (feed_) lose();
  if (!feed || feed->failed) return;
  try {
    resampler_.emplace(feed->rate);
  } catch (const std::exception& error) {
    log_.line(error.what());
    feed->failed = true;
    return;
  }
  feed_ = std::move(feed);
  dropped_ = 0;
  silentUntil_ = Clock::now() + kFirstSound;
}

void CubebInputQueue::pull() {
  bool heard = false;
  while (const std::size_t count = feed_->ring.pull(captured_)) {
    heard = true;
    resampled_.clear();
    resampler_->process(std::span(captured_).first(count), resampled_);
    deliver(resampled_);
  }
  watch(heard);
}

void CubebInputQueue::watch(bool heard) {
  const auto now = Clock::now();
  if (heard) {
    silentUntil_ = now + kNextSound;
  } else if (now > silentUntil_) {
    feed_->failed = true;
    lose();
  }
}

void CubebInputQueue::lose() {
  feed_.reset();
  deviceLost();
}

void CubebInputQueue::writeNews() {
  for (const std::string& line : keeper_->takeNews()) log_.line(line);
  if (!feed_ || feed_->ring.dropped() == dropped_) return;
  const std::uint64_t dropped = feed_->ring.dropped();
  log_.line(fmt::format("Microphone: {} samples came too fast", dropped - dropped_));
  dropped_ = dropped;
}

}  // namespace endpin
