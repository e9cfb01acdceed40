#include "adapters/cubeb/DeviceKeeper.h"

#include <fmt/format.h>

#include <chrono>
#include <utility>

#include "adapters/cubeb/CaptureStream.h"

namespace endpin {
namespace {

using namespace std::chrono_literals;
using State = MicrophoneStatus::State;

constexpr auto kCheckInterval = 200ms;  // how soon a stream that failed is noticed
constexpr auto kRetryInterval = 500ms;
constexpr auto kPatience = 1s;  // with the library, at the end

}  // namespace

// The control thread. The stream is its own; everything else lies in the shared state.
class DeviceKeeper::Control {
 public:
  explicit Control(std::shared_ptr<Shared> shared) : shared_(std::move(shared)) {}

  void run() {
    while (!quit()) {
      if (!asked()) {
        letGo({State::Closed, ""});
        pause(kRetryInterval);
      } else if (!stream_) {
        tryToOpen();
      } else if (stream_->isAlive()) {
        publish({State::Open, stream_->deviceName()}, stream_->feed());
        pause(kCheckInterval);
      } else {
        letGo({State::Missing, "the microphone is gone"});
      }
    }
    letGo({State::Closed, ""});
    const std::lock_guard lock(shared_->mutex);
    shared_->ended = true;
    shared_->changed.notify_all();
  }

 private:
  bool quit() const {
    const std::lock_guard lock(shared_->mutex);
    return shared_->quit;
  }
  bool asked() const {
    const std::lock_guard lock(shared_->mutex);
    return shared_->open;
  }

  // Waits that long, or until something else is asked for.
  void pause(std::chrono::milliseconds time) const {
    std::unique_lock lock(shared_->mutex);
    const bool open = shared_->open;
    shared_->changed.wait_for(lock, time, [&] { return shared_->quit || shared_->open != open; });
  }

  void tryToOpen() {
    std::string reason;
    stream_ = CaptureStream::open(shared_->wanted, reason);
    if (stream_) {
      publish({State::Open, stream_->deviceName()}, stream_->feed());
    } else {
      publish({State::Missing, reason}, nullptr);
      pause(kRetryInterval);
    }
  }

  // Says so first: to close the stream may take for ever.
  void letGo(const MicrophoneStatus& status) {
    publish(status, nullptr);
    stream_.reset();
  }

  void publish(const MicrophoneStatus& status, std::shared_ptr<CaptureFeed> feed) const {
    const std::lock_guard lock(shared_->mutex);
    const MicrophoneStatus old = std::exchange(shared_->status, status);
    shared_->feed = std::move(feed);
    const bool stillMissing = old.state == State::Missing && status.state == State::Missing;
    if (stillMissing) shared_->status.text = old.text;  // what happened first explains the rest
    if (stillMissing || (old.state == status.state && old.text == status.text)) return;
    if (status.state == State::Open) {
      shared_->news.push_back(
          fmt::format("Microphone: {}, {} Hz", status.text, shared_->feed->rate));
    } else if (status.state == State::Missing) {
      shared_->news.push_back(fmt::format("Microphone: {}; waiting for it", status.text));
    }
  }

  const std::shared_ptr<Shared> shared_;
  std::unique_ptr<CaptureStream> stream_;
};

DeviceKeeper::DeviceKeeper(const std::string& wanted)
    : shared_(std::make_shared<Shared>(wanted)),
      thread_([shared = shared_] { Control(shared).run(); }) {}

DeviceKeeper::~DeviceKeeper() {
  std::unique_lock lock(shared_->mutex);
  shared_->quit = true;
  shared_->changed.notify_all();
  const bool ended = shared_->changed.wait_for(lock, kPatience, [&] { return shared_->ended; });
  lock.unlock();
  ended ? thread_.join() : thread_.detach();
}

void DeviceKeeper::open() {
  const std::lock_guard lock(shared_->mutex);
  if (!shared_->open) shared_->status = {State::Opening, ""};
  shared_->open = true;
  shared_->changed.notify_all();
}

void DeviceKeeper::close() {
  const std::lock_guard lock(shared_->mutex);
  shared_->open = false;
  shared_->changed.notify_all();
}

MicrophoneStatus DeviceKeeper::status() const {
  const std::lock_guard lock(shared_->mutex);
  return shared_->status;
}

std::shared_ptr<CaptureFeed> DeviceKeeper::feed() const {
  const std::lock_guard lock(shared_->mutex);
  return shared_->feed;
}

std::vector<std::string> DeviceKeeper::takeNews() {
  const std::lock_guard lock(shared_->mutex);
  return std::exchange(shared_->news, {});
}

}  // namespace endpin
