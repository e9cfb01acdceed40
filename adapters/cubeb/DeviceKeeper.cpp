#include "adapters/cubeb/DeviceKeeper.h"

#include <fmt/format.h>

#include <mutex>
#include <utility>

#include "adapters/cubeb/CaptureStream.h"

namespace endpin {
namespace {

using State = MicrophoneStatus::State;

}  // namespace

// The stream belongs to the control thread; everything else is what it says to the others.
class DeviceKeeper::Microphone : public KeptStream {
 public:
  explicit Microphone(std::string wanted) : wanted_(std::move(wanted)) {}

  Outcome open() override {
    std::string reason;
    stream_ = CaptureStream::open(wanted_, reason);
    if (stream_) return publishOpen();
    publish({State::Missing, reason}, nullptr);
    return Outcome::Missing;
  }

  Outcome check() override {
    if (stream_->isAlive()) return publishOpen();
    letGo({State::Missing, "the microphone is gone"});
    return Outcome::Missing;
  }

  void close() override { letGo({State::Closed, ""}); }

  // Thread: any, from here on.
  void noteOpening() {
    const std::lock_guard lock(mutex_);
    if (status_.state == State::Closed) status_.state = State::Opening;
  }
  MicrophoneStatus status() const {
    const std::lock_guard lock(mutex_);
    return status_;
  }
  std::shared_ptr<CaptureFeed> feed() const {
    const std::lock_guard lock(mutex_);
    return feed_;
  }
  std::vector<std::string> takeNews() {
    const std::lock_guard lock(mutex_);
    return std::exchange(news_, {});
  }

 private:
  Outcome publishOpen() {
    publish({State::Open, stream_->deviceName()}, stream_->feed());
    return Outcome::Open;
  }

  // Says so first: to close the stream may take for ever.
  void letGo(const MicrophoneStatus& status) {
    publish(status, nullptr);
    stream_.reset();
  }

  void publish(const MicrophoneStatus& status, std::shared_ptr<CaptureFeed> feed) {
    const std::lock_guard lock(mutex_);
    const MicrophoneStatus old = std::exchange(status_, status);
    feed_ = std::move(feed);
    const bool stillMissing = old.state == State::Missing && status.state == State::Missing;
    if (stillMissing) status_.text = old.text;  // what happened first explains the rest
    if (stillMissing || (old.state == status.state && old.text == status.text)) return;
    if (status.state == State::Open) {
      news_.push_back(fmt::format("Microphone: {}, {} Hz", status.text, feed_->rate));
    } else if (status.state == State::Missing) {
      news_.push_back(fmt::format("Microphone: {}; waiting for it", status.text));
    }
  }

  const std::string wanted_;
  std::unique_ptr<CaptureStream> stream_;

  mutable std::mutex mutex_;  // guards the rest
  MicrophoneStatus status_;
  std::shared_ptr<CaptureFeed> feed_;
  std::vector<std::string> news_;
};

DeviceKeeper::DeviceKeeper(const std::string& wanted)
    : microphone_(std::make_shared<Microphone>(wanted)), keeper_(microphone_) {}

void DeviceKeeper::open() {
  if (!keeper_.wanted()) microphone_->noteOpening();
  keeper_.open();
}

void DeviceKeeper::close() {
  keeper_.close();
}

MicrophoneStatus DeviceKeeper::status() const {
  return microphone_->status();
}

std::shared_ptr<CaptureFeed> DeviceKeeper::feed() const {
  return microphone_->feed();
}

std::vector<std::string> DeviceKeeper::takeNews() {
  return microphone_->takeNews();
}

}  // namespace endpin
