// Keeps something open that the sound system can take away: opens it when it is wanted, looks after
// it, opens it again when it failed, closes it when it is wanted no more. All of that happens on a
// control thread of its own, because a sound server that hangs makes every call to the library
// hang. Nobody else ever waits for it. The thread ends when all is closed: output units that were
// replaced stay for as long as the application, and cost nothing.
#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <utility>

#include "adapters/posix/WakeUp.h"

namespace endpin {

// What is kept open. It is closed whenever it is destroyed.
// Thread: control, but for checkSoon(). Every function may wait for the sound server.
class SupervisedStream {
 public:
  enum class Outcome {
    Open,
    Missing,   // not open; to be tried again while it is wanted
    Finished,  // no longer wanted: close() follows
  };

  virtual ~SupervisedStream() = default;

  virtual Outcome open() = 0;
  // Of an open stream: once a second, and whenever checkSoon() asked for it.
  virtual Outcome check() = 0;
  // Wanted no more. It may not be open.
  virtual void close() = 0;

  // Wakes the control thread. Thread: any. Realtime-safe: yes.
  void checkSoon() const noexcept { wakeUp_.signal(); }

 private:
  friend class StreamSupervisor;
  const ThreadWakeUp wakeUp_;
};

class StreamSupervisor {
 public:
  // `patience` is how long the destructor waits for the library at most.
  explicit StreamSupervisor(std::shared_ptr<SupervisedStream> stream,
                            std::chrono::milliseconds patience = std::chrono::seconds(1));
  // Closes the stream. When patience ends, it leaves the control thread to itself with all that it
  // needs.
  ~StreamSupervisor();
  StreamSupervisor(const StreamSupervisor&) = delete;
  StreamSupervisor& operator=(const StreamSupervisor&) = delete;

  // None of the following waits for the library. Thread: any.
  void open();
  void close();
  // Whether it is asked for; not whether it is open.
  [[nodiscard]] bool wanted() const { return control_->wanted; }

 private:
  // Of the control thread, which may outlive the supervisor.
  struct Control {
    explicit Control(std::shared_ptr<SupervisedStream> supervised)
        : stream(std::move(supervised)) {}

    const std::shared_ptr<SupervisedStream> stream;
    std::atomic<bool> wanted = false;
    std::atomic<bool> quit = false;
    std::mutex mutex;      // of what follows; never held during a call of the library
    bool running = false;  // there is a thread, and it will still see what is wanted
    std::condition_variable ended;

    void run();
    void keepOpen();
    void retryLater() const;
    [[nodiscard]] bool idle() const { return quit || !wanted; }
    bool goOn();
  };

  const std::chrono::milliseconds patience_;
  const std::shared_ptr<Control> control_;
};

}  // namespace endpin
