#include "adapters/cubeb/CubebMicrophone.h"

#include <fmt/format.h>

#include <atomic>
#include <chrono>
#include <exception>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

#include "adapters/cubeb/CaptureStream.h"
#include "adapters/cubeb/StreamSupervisor.h"
#include "adapters/soxr/CaptureResampler.h"
#include "audio/CaptureQueue.h"

namespace endpin {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;
using State = MicrophoneStatus::State;

constexpr auto kFirstSound = 3s;     // some devices take their time to begin
constexpr auto kNextSound = 1300ms;  // silence has samples too: none at all means a dead stream

}  // namespace

// The stream belongs to the control thread; everything else is what it says to the others.
class CubebMicrophone::Device : public SupervisedStream {
 public:
  explicit Device(std::string wanted) : wanted_(std::move(wanted)) {}

  Outcome open() override {
    std::string reason;
    opened_ = wanted();
    stream_ = CaptureStream::open(opened_, heard, *this, reason);
    if (stream_) return publishOpen();
    publish({State::Missing, reason}, nullptr);
    return Outcome::Missing;
  }

  Outcome check() override {
    if (opened_ != wanted()) {
      letGo({State::Opening, ""});
      return Outcome::Missing;
    }
    if (stream_->isAlive()) return publishOpen();
    letGo({State::Missing, "the microphone is gone"});
    return Outcome::Missing;
  }

  void close() override { letGo({State::Closed, ""}); }

  // Thread: any, from here on.
  void use(const std::string& device) {
    {
      const std::lock_guard lock(mutex_);
      if (std::exchange(wanted_, device) == device) return;
      if (status_.state == State::Missing) status_ = {State::Opening, ""};
    }
    checkSoon();
  }
  void noteOpening() {
    const std::lock_guard lock(mutex_);
    if (status_.state == State::Closed) status_.state = State::Opening;
  }
  MicrophoneStatus status() const {
    const std::lock_guard lock(mutex_);
    return status_;
  }
  // Of the stream that is open now; null while there is none.
  std::shared_ptr<StreamState> state() const {
    const std::lock_guard lock(mutex_);
    return state_;
  }
  // Takes what there is to log: a line for each change.
  std::vector<std::string> takeNews() {
    const std::lock_guard lock(mutex_);
    return std::exchange(news_, {});
  }

  const ThreadWakeUp heard;  // signalled when samples or any of the above are new

 private:
  Outcome publishOpen() {
    publish({State::Open, stream_->deviceName()}, stream_->state());
    return Outcome::Open;
  }

  // Says so first: to close the stream may take for ever.
  void letGo(const MicrophoneStatus& status) {
    publish(status, nullptr);
    stream_.reset();
  }

  void publish(const MicrophoneStatus& status, std::shared_ptr<StreamState> state) {
    const std::lock_guard lock(mutex_);
    const MicrophoneStatus old = std::exchange(status_, status);
    state_ = std::move(state);
    const bool stillMissing = old.state == State::Missing && status.state == State::Missing;
    if (stillMissing) status_.text = old.text;  // what happened first explains the rest
    if (stillMissing || (old.state == status.state && old.text == status.text)) return;
    if (status.state == State::Open) {
      news_.push_back(fmt::format("Microphone: {}, {} Hz", status.text, state_->rate));
    } else if (status.state == State::Missing) {
      news_.push_back(fmt::format("Microphone: {}; waiting for it", status.text));
    }
    heard.signal();
  }

  std::string wanted() const {
    const std::lock_guard lock(mutex_);
    return wanted_;
  }

  std::string opened_;  // what the stream was opened as
  std::unique_ptr<CaptureStream> stream_;

  mutable std::mutex mutex_;  // guards the rest
  std::string wanted_;
  MicrophoneStatus status_;
  std::shared_ptr<StreamState> state_;
  std::vector<std::string> news_;
};

namespace {

// A thread of its own sleeps until something was captured, resamples it and delivers it.
class CubebInputQueue : public CaptureQueue {
 public:
  CubebInputQueue(std::shared_ptr<CubebMicrophone::Device> device, Log& log,
                  AudioInputCallback callback, void* userData)
      : CaptureQueue(callback, userData),
        device_(std::move(device)),
        supervisor_(device_),
        log_(log),
        captured_(8192),
        thread_([this] { run(); }) {}

  ~CubebInputQueue() override {
    quit_ = true;
    device_->heard.signal();
    thread_.join();
  }

  AudioStatus start() override {
    const AudioStatus status = CaptureQueue::start();
    if (!supervisor_.wanted()) device_->noteOpening();
    supervisor_.open();
    return status;
  }

  // A block that is still to be completed needs its device; then that stays open.
  AudioStatus stop(bool immediate) override {
    if (immediate) supervisor_.close();
    return CaptureQueue::stop(immediate);
  }

 private:
  // Thread: delivering, all of them.
  void run() {
    while (!quit_) {
      device_->heard.waitUntil(state_ ? silentUntil_ : Clock::time_point::max());
      follow(device_->state());
      if (state_ && state_->failed) lose();
      if (state_) pull();
      writeNews();
    }
  }

  // A new stream begins anew: nothing of the old one may run into it.
  void follow(std::shared_ptr<StreamState> state) {
    if (state == state_) return;
    if (state_) lose();
    if (!state || state->failed) return;
    try {
      resampler_.emplace(state->rate);
    } catch (const std::exception& error) {
      log_.line(error.what());
      state->fail();
      return;
    }
    state_ = std::move(state);
    dropped_ = 0;
    silentUntil_ = Clock::now() + kFirstSound;
  }

  void pull() {
    bool heard = false;
    while (const std::size_t count = state_->ring.pull(captured_)) {
      heard = true;
      resampled_.clear();
      resampler_->process(std::span(captured_).first(count), resampled_);
      deliver(resampled_);
    }
    watch(heard);
  }

  void watch(bool heard) {
    const auto now = Clock::now();
    if (heard) {
      silentUntil_ = now + kNextSound;
    } else if (now >= silentUntil_) {
      state_->fail();
      lose();
    }
  }

  void lose() {
    state_.reset();
    deviceLost();
  }

  void writeNews() {
    for (const std::string& line : device_->takeNews()) log_.line(line);
    if (!state_ || state_->ring.dropped() == dropped_) return;
    const std::uint64_t dropped = state_->ring.dropped();
    log_.line(fmt::format("Microphone: {} samples came too fast", dropped - dropped_));
    dropped_ = dropped;
  }

  const std::shared_ptr<CubebMicrophone::Device> device_;
  StreamSupervisor supervisor_;
  Log& log_;

  // Of the delivering thread.
  std::shared_ptr<StreamState> state_;  // of the stream that is pulled from; null: there is none
  std::optional<CaptureResampler> resampler_;
  std::vector<std::int16_t> captured_;   // at the device's rate
  std::vector<std::int16_t> resampled_;  // at the capture rate
  Clock::time_point silentUntil_;        // when a stream that delivers nothing counts as lost
  std::uint64_t dropped_ = 0;            // of the present stream, as logged last

  std::atomic<bool> quit_ = false;
  std::thread thread_;  // last: it uses everything above
};

}  // namespace

std::unique_ptr<AudioInputQueue> CubebMicrophone::newInput(const AudioStreamFormat& format,
                                                           AudioInputCallback callback,
                                                           void* userData) {
  if (!isCaptureFormat(format)) return nullptr;
  const auto device = std::make_shared<Device>(device_);
  newest_ = device;
  return std::make_unique<CubebInputQueue>(device, log_, callback, userData);
}

void CubebMicrophone::use(const std::string& device) {
  device_ = device;
  if (const auto newest = newest_.lock()) newest->use(device);
}

MicrophoneStatus CubebMicrophone::status() const {
  const auto device = newest_.lock();
  return device ? device->status() : MicrophoneStatus{};
}

}  // namespace endpin
