// A device that is what it is told to be: a phone of common size unless said otherwise.
// Thread: main, but for systemVersion (any).
#pragma once

#include <optional>
#include <string>
#include <utility>

#include "ports/Device.h"

namespace endpin {

class FixedDevice : public Device {
 public:
  struct Facts {
    std::optional<int> idiom = static_cast<int>(InterfaceIdiom::Phone);
    double screenHeight = 844;  // points
    std::string systemVersion = "1.0";
  };

  FixedDevice() : FixedDevice(Facts{}) {}
  explicit FixedDevice(Facts facts) : facts_(std::move(facts)) {}

  [[nodiscard]] std::optional<int> userInterfaceIdiom() const override { return facts_.idiom; }
  [[nodiscard]] double screenHeight() const override { return facts_.screenHeight; }
  [[nodiscard]] std::string systemVersion() const override { return facts_.systemVersion; }
  void setIdleTimerDisabled(bool /*disabled*/) override {}

 private:
  const Facts facts_;
};

}  // namespace endpin
