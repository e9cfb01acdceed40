#include "adapters/cubeb/StreamKeeper.h"

#include <utility>

namespace endpin {
namespace {

using namespace std::chrono_literals;

constexpr auto kRetryInterval = 500ms;
constexpr auto kPatience = 1s;  // with the library, at the end

}  // namespace

class StreamKeeper::Control {
 public:
  Control(std::shared_ptr<Shared> shared, std::shared_ptr<KeptStream> stream)
      : shared_(std::move(shared)), stream_(std::move(stream)) {}

  void run() {
    while (waitUntilWanted()) {
      keepOpen();
      stream_->close();
    }
    const std::lock_guard lock(shared_->mutex);
    shared_->ended = true;
    shared_->changed.notify_all();
  }

 private:
  using Outcome = KeptStream::Outcome;

  bool idle() const { return shared_->quit || !shared_->wanted; }

  // Returns false when it is time to quit.
  bool waitUntilWanted() const {
    std::unique_lock lock(shared_->mutex);
    shared_->changed.wait(lock, [this] { return shared_->quit || shared_->wanted; });
    return !shared_->quit;
  }

  // A stream that fails is opened anew at once, one that cannot be opened after a while.
  void keepOpen() {
    Outcome outcome = Outcome::Missing;
    do {
      const bool wasOpen = outcome == Outcome::Open;
      outcome = wasOpen ? stream_->check() : stream_->open();
      if (outcome == Outcome::Finished) return forget();
      if (wasOpen && outcome == Outcome::Missing) continue;
      pause(outcome == Outcome::Open ? stream_->interval() : kRetryInterval);
    } while (wanted());
  }

  bool wanted() const {
    const std::lock_guard lock(shared_->mutex);
    return !idle();
  }

  void forget() {
    const std::lock_guard lock(shared_->mutex);
    shared_->wanted = false;
  }

  // Waits that long, or until it is wanted no more.
  void pause(std::chrono::milliseconds time) const {
    std::unique_lock lock(shared_->mutex);
    shared_->changed.wait_for(lock, time, [this] { return idle(); });
  }

  const std::shared_ptr<Shared> shared_;
  const std::shared_ptr<KeptStream> stream_;
};

StreamKeeper::StreamKeeper(std::shared_ptr<KeptStream> stream)
    : shared_(std::make_shared<Shared>()),
      thread_([control = Control(shared_, std::move(stream))]() mutable { control.run(); }) {}

StreamKeeper::~StreamKeeper() {
  std::unique_lock lock(shared_->mutex);
  shared_->quit = true;
  shared_->changed.notify_all();
  const bool ended = shared_->changed.wait_for(lock, kPatience, [this] { return shared_->ended; });
  lock.unlock();
  ended ? thread_.join() : thread_.detach();
}

void StreamKeeper::open() {
  const std::lock_guard lock(shared_->mutex);
  shared_->wanted = true;
  shared_->changed.notify_all();
}

void StreamKeeper::close() {
  const std::lock_guard lock(shared_->mutex);
  shared_->wanted = false;
  shared_->changed.notify_all();
}

bool StreamKeeper::wanted() const {
  const std::lock_guard lock(shared_->mutex);
  return shared_->wanted;
}

}  // namespace endpin
