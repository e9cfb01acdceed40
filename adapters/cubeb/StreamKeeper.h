// Keeps something open that the sound system can take away: opens it when it is wanted, looks after
// it, opens it again when it failed, closes it when it is wanted no more. All of that happens on a
// control thread of its own, because a sound server that hangs makes every call to the library
// hang. Nobody else ever waits for it.
#pragma once

#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <thread>

namespace endpin {

// What is kept open. It is closed whenever it is destroyed.
// Thread: control. Every function but interval() may wait for the sound server.
class KeptStream {
 public:
  enum class Outcome {
    Open,
    Missing,   // not open; to be tried again while it is wanted
    Finished,  // no longer wanted: close() follows
  };

  virtual ~KeptStream() = default;

  virtual Outcome open() = 0;
  // Of an open stream, again and again.
  virtual Outcome check() = 0;
  // Wanted no more. It may not be open.
  virtual void close() = 0;

  // Between two checks.
  [[nodiscard]] virtual std::chrono::milliseconds interval() const {
    return std::chrono::milliseconds(200);
  }
};

class StreamKeeper {
 public:
  explicit StreamKeeper(std::shared_ptr<KeptStream> stream);
  // Closes the stream. Waits a second for the library at most, then leaves the control thread to
  // itself with all that it needs.
  ~StreamKeeper();
  StreamKeeper(const StreamKeeper&) = delete;
  StreamKeeper& operator=(const StreamKeeper&) = delete;

  // None of the following waits for the library. Thread: any.
  void open();
  void close();
  // Whether it is asked for; not whether it is open.
  [[nodiscard]] bool wanted() const;

 private:
  struct Shared {
    mutable std::mutex mutex;
    std::condition_variable changed;
    bool wanted = false;
    bool quit = false;
    bool ended = false;  // the control thread has nothing more to do
  };
  class Control;

  std::shared_ptr<Shared> shared_;
  std::thread thread_;
};

}  // namespace endpin
