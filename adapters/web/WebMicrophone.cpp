#include "adapters/web/WebMicrophone.h"

#include <algorithm>
#include <cmath>

#include "adapters/web/Host.h"
#include "audio/CaptureFormat.h"

namespace endpin {
namespace {

// Of the devices that browsers capture with; the resampler takes them all.
constexpr double kLowestRate = 3000;  // hertz
constexpr double kHighestRate = 768000;

std::int16_t sampleOf(float value) {
  constexpr float kFullScale = 32768;
  if (std::isnan(value)) return 0;
  return static_cast<std::int16_t>(
      std::lrint(std::clamp(value * kFullScale, -kFullScale, kFullScale - 1)));
}

}  // namespace

// Asks the page for samples while it is started.
class WebMicrophone::Queue : public CaptureQueue {
 public:
  Queue(WebMicrophone& microphone, AudioInputCallback callback, void* userData)
      : CaptureQueue(callback, userData), microphone_(microphone) {
    microphone_.queue_ = this;
  }
  ~Queue() override { microphone_.queue_ = nullptr; }

  AudioStatus start() override {
    host::listen(true);
    return CaptureQueue::start();
  }
  AudioStatus stop(bool immediate) override {
    if (immediate) host::listen(false);
    return CaptureQueue::stop(immediate);
  }

 private:
  WebMicrophone& microphone_;
};

std::unique_ptr<AudioInputQueue> WebMicrophone::newInput(const AudioStreamFormat& format,
                                                         AudioInputCallback callback,
                                                         void* userData) {
  if (!isCaptureFormat(format)) return nullptr;
  return std::make_unique<Queue>(*this, callback, userData);
}

bool WebMicrophone::feed(std::span<const float> samples, double rate) {
  if (!(rate >= kLowestRate && rate <= kHighestRate)) return false;
  if (rate != rate_) {
    lose();
    resampler_.emplace(rate);
    rate_ = rate;
  }
  captured_.resize(samples.size());
  std::transform(samples.begin(), samples.end(), captured_.begin(), sampleOf);
  resampled_.clear();
  resampler_->process(captured_, resampled_);
  if (queue_) queue_->deliver(resampled_);
  return true;
}

void WebMicrophone::lose() {
  rate_ = 0;
  resampler_.reset();
  if (queue_) queue_->deviceLost();
}

void WebMicrophone::use(const std::string& id) {
  host::useMicrophone(id.data(), id.size());
}

}  // namespace endpin
