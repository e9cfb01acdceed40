#include "adapters/cubeb/CubebMicrophone.h"

#include "adapters/cubeb/CubebInputQueue.h"
#include "audio/CaptureFormat.h"

namespace endpin {

std::unique_ptr<AudioInputQueue> CubebMicrophone::newInput(const AudioStreamFormat& format,
                                                           AudioInputCallback callback,
                                                           void* userData) {
  if (!isCaptureFormat(format)) return nullptr;
  const auto keeper = std::make_shared<DeviceKeeper>(device_);
  keeper_ = keeper;
  return std::make_unique<CubebInputQueue>(keeper, log_, callback, userData);
}

MicrophoneStatus CubebMicrophone::status() const {
  const auto keeper = keeper_.lock();
  return keeper ? keeper->status() : MicrophoneStatus{};
}

}  // namespace endpin
