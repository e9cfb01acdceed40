// The microphone of this computer, over cubeb: captured at the device's own rate, resampled,
// delivered from a thread of the queue's own. A device that is missing or goes is waited for;
// listening goes on by itself when it is back.
//
// Thread: main, but for what the queue's port says.
#pragma once

#include <memory>
#include <string>
#include <utility>

#include "ports/AudioInput.h"
#include "ports/Log.h"

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

class CubebMicrophone : public AudioInput {
 public:
  // Uses the device of that name or id, or the default one for the empty name. `log` outlives the
  // microphone and its queues; it receives a line for each change of the device.
  CubebMicrophone(std::string device, Log& log) : device_(std::move(device)), log_(log) {}

  // One queue at a time. The destructor of the queue waits a second for the sound server at most.
  std::unique_ptr<AudioInputQueue> newInput(const AudioStreamFormat& format,
                                            AudioInputCallback callback, void* userData) override;

  // Uses another device from now on, as soon as it is there; does not wait for it.
  void use(const std::string& device);

  // How it stands with the device of the newest queue. Does not wait.
  [[nodiscard]] MicrophoneStatus status() const;

  class Device;  // the one of a queue, kept open while it is wanted

 private:
  std::string device_;
  Log& log_;
  std::weak_ptr<Device> newest_;  // of the newest queue
};

}  // namespace endpin
