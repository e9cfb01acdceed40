// Keeps the microphone open, and says how it stands with it. Nobody waits for the sound server.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "adapters/cubeb/CaptureFeed.h"
#include "adapters/cubeb/StreamKeeper.h"

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
  // Takes care of the microphone of that name or id, or the default one for the empty name. The
  // destructor closes it, and waits a second for the library at most.
  explicit DeviceKeeper(const std::string& wanted);

  // Thread: any, from here on.
  void open();
  void close();
  [[nodiscard]] MicrophoneStatus status() const;

  // The stream that is open now; null while there is none. Say `failed` in it when nothing comes.
  [[nodiscard]] std::shared_ptr<CaptureFeed> feed() const;

  // Takes what there is to log: a line for each change.
  [[nodiscard]] std::vector<std::string> takeNews();

 private:
  class Microphone;

  std::shared_ptr<Microphone> microphone_;
  StreamKeeper keeper_;
};

}  // namespace endpin
