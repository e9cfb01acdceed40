// The device as the application sees it: one of the list, standing for the window it is shown in.
// Thread: main, but for systemVersion (any).
#pragma once

#include <QSysInfo>

#include "adapters/qt/IdleInhibitor.h"
#include "app/DeviceChoice.h"
#include "ports/Device.h"
#include "ports/Log.h"

namespace endpin {

class QtDevice final : public Device {
 public:
  // `log` outlives the device.
  QtDevice(const DeviceModel& model, Log& log) : model_(model), idleInhibitor_(log) {}

  [[nodiscard]] std::optional<int> userInterfaceIdiom() const override {
    return static_cast<int>(model_.idiom);
  }
  [[nodiscard]] double screenHeight() const override { return model_.height; }
  [[nodiscard]] std::string systemVersion() const override {
    return QSysInfo::productVersion().toStdString();
  }
  void setIdleTimerDisabled(bool disabled) override { idleInhibitor_.setInhibited(disabled); }

  [[nodiscard]] const DeviceModel& model() const { return model_; }

 private:
  DeviceModel model_;
  IdleInhibitor idleInhibitor_;
};

}  // namespace endpin
