// Keeps the microphone open: opens it, notices when it goes, tries again every half second until it
// is back. All of that happens on a control thread of its own, because a sound server that hangs
// makes every call to the library hang. Nobody else ever waits for it.
#pragma once

#include <condition_variable>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "adapters/cubeb/CaptureFeed.h"

namespace endpin {

// How it stands with the microphone.
struct MicrophoneStatus {
  enum class State {
    Closed,   // nobody listens
    Opening,  // the sound system has not answered yet
    Open,
    Missing,  // waited for
  };

  State state = State::Closed;
  std::string text;  // Open: name of the device; Missing: why
};

class DeviceKeeper {
 public:
  // Takes care of the microphone of that name or id, or the default one for the empty name.
  explicit DeviceKeeper(const std::string& wanted);
  // Closes the microphone. Waits a second for the library at most, then leaves the control thread
  // to itself with all that it needs.
  ~DeviceKeeper();
  DeviceKeeper(const DeviceKeeper&) = delete;
  DeviceKeeper& operator=(const DeviceKeeper&) = delete;

  // None of the following waits for the library. Thread: any.
  void open();
  void close();
  [[nodiscard]] MicrophoneStatus status() const;

  // The stream that is open now; null while there is none. Say `failed` in it when nothing comes.
  [[nodiscard]] std::shared_ptr<CaptureFeed> feed() const;

  // Takes what there is to log: a line for each change.
  [[nodiscard]] std::vector<std::string> takeNews();

 private:
  struct Shared {
    explicit Shared(const std::string& device) : wanted(device) {}

    const std::string wanted;
    mutable std::mutex mutex;
    std::condition_variable changed;
    bool open = false;   // what is asked for
    bool quit = false;   // likewise
    bool ended = false;  // the control thread has nothing more to do
    MicrophoneStatus status;
    std::shared_ptr<CaptureFeed> feed;
    std::vector<std::string> news;
  };
  class Control;

  std::shared_ptr<Shared> shared_;
  std::thread thread_;
};

}  // namespace endpin
