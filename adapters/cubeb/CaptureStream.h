// One opened capture stream, with the library context that it needs. Every call may wait for the
// sound server, the destructor included: only the control thread makes them.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "adapters/cubeb/CaptureFeed.h"
#include "adapters/cubeb/InputDevices.h"

struct cubeb;
struct cubeb_stream;

namespace endpin {

class CaptureStream {
 public:
  // Opens and starts the microphone of that name or id, or the default one for the empty name.
  // Null when there is none or it cannot be opened; `reason` then says so.
  static std::unique_ptr<CaptureStream> open(const std::string& wanted, std::string& reason);
  ~CaptureStream();
  CaptureStream(const CaptureStream&) = delete;
  CaptureStream& operator=(const CaptureStream&) = delete;

  [[nodiscard]] const std::shared_ptr<CaptureFeed>& feed() const { return feed_; }

  // Whether sound can still be expected: no failure, and its microphone has not gone. (The sound
  // server moves the stream of a microphone that goes to whatever it has, a speaker if need be.)
  [[nodiscard]] bool isAlive();

  // The device that is heard now, for people. A stream on the default microphone follows the
  // default.
  [[nodiscard]] std::string deviceName() const;

 private:
  explicit CaptureStream(const std::string& wanted) : wanted_(wanted) {}

  bool connect();
  [[nodiscard]] bool choose();
  [[nodiscard]] bool start();
  [[nodiscard]] std::string whyNoDevice() const;
  [[nodiscard]] bool followsDefault() const { return wanted_.empty() && device_.isDefault; }

  const std::string wanted_;
  std::vector<InputDevice> devices_;  // as enumerated last
  InputDevice device_;                // the one chosen
  std::shared_ptr<CaptureFeed> feed_;
  cubeb* context_ = nullptr;
  cubeb_stream* stream_ = nullptr;
};

}  // namespace endpin
