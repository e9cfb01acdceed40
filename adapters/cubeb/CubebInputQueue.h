// The queue of the cubeb microphone: a thread of its own pulls what the device captured, resamples
// it and delivers it.
#pragma once

#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

#include "adapters/cubeb/DeviceKeeper.h"
#include "adapters/soxr/CaptureResampler.h"
#include "audio/CaptureQueue.h"
#include "ports/Log.h"

namespace endpin {

class CubebInputQueue : public CaptureQueue {
 public:
  CubebInputQueue(std::shared_ptr<DeviceKeeper> keeper, Log& log, AudioInputCallback callback,
                  void* userData);
  ~CubebInputQueue() override;

  AudioStatus start() override;
  AudioStatus stop(bool immediate) override;

 private:
  using Clock = std::chrono::steady_clock;

  // Thread: delivering.
  void run();
  void follow(std::shared_ptr<CaptureFeed> feed);
  void pull();
  void watch(bool heard);
  void lose();
  void writeNews();

  const std::shared_ptr<DeviceKeeper> keeper_;
  Log& log_;

  // Of the delivering thread.
  std::shared_ptr<CaptureFeed> feed_;  // the stream that is pulled from; null while there is none
  std::optional<CaptureResampler> resampler_;
  std::vector<std::int16_t> captured_;   // at the device's rate
  std::vector<std::int16_t> resampled_;  // at the capture rate
  Clock::time_point silentUntil_;        // when a stream that delivers nothing counts as lost
  std::uint64_t dropped_ = 0;            // of the present stream, as logged last

  std::mutex mutex_;
  std::condition_variable wake_;
  bool quit_ = false;  // guarded by mutex_

  std::thread thread_;  // last: it uses everything above
};

}  // namespace endpin
