#include "adapters/cubeb/CaptureStream.h"

#include <cubeb/cubeb.h>

#include <algorithm>

namespace endpin {
namespace {

constexpr std::uint32_t kUsualRate = 48000;        // hertz, when the device tells none
constexpr std::uint32_t kCallbacksPerSecond = 25;  // at most, if the device can do with it

// Thread: audio callback. Realtime-safe: yes.
long takeSamples(cubeb_stream* /*stream*/, void* user, const void* input, void* /*output*/,
                 long frames) {
  const auto count = static_cast<std::size_t>(frames);
  static_cast<CaptureFeed*>(user)->ring.push({static_cast<const std::int16_t*>(input), count});
  return frames;
}

void noteState(cubeb_stream* /*stream*/, void* user, cubeb_state state) {
  const bool ended = state == CUBEB_STATE_ERROR || state == CUBEB_STATE_DRAINED;
  if (ended) static_cast<CaptureFeed*>(user)->failed = true;
}

void noteDevices(cubeb* /*context*/, void* user) {
  static_cast<CaptureFeed*>(user)->devicesChanged = true;
}

}  // namespace

std::unique_ptr<CaptureStream> CaptureStream::open(const std::string& wanted, std::string& reason) {
  std::unique_ptr<CaptureStream> stream(new CaptureStream(wanted));
  if (!stream->connect()) {
    reason = "no sound system";
  } else if (!stream->choose()) {
    reason = stream->whyNoDevice();
  } else if (!stream->start()) {
    reason = "no microphone can be opened";
  } else {
    return stream;
  }
  return nullptr;
}

bool CaptureStream::connect() {
  return cubeb_init(&context_, "Endpin", nullptr) == CUBEB_OK;
}

// A sound system that cannot tell its devices may still have a default one.
bool CaptureStream::choose() {
  const auto devices = enumerateInputs(context_);
  if (!devices && wanted_.empty()) {
    device_.isDefault = true;
    return true;
  }
  devices_ = devices.value_or(std::vector<InputDevice>{});
  const InputDevice* chosen = chooseInput(devices_, wanted_);
  if (chosen) device_ = *chosen;
  return chosen != nullptr;
}

bool CaptureStream::start() {
  const std::uint32_t rate = device_.rate > 0 ? device_.rate : kUsualRate;
  feed_ = std::make_shared<CaptureFeed>(rate);
  // Not every sound system tells of devices; then a stream that fails is all there is to go by.
  cubeb_register_device_collection_changed(context_, CUBEB_DEVICE_TYPE_INPUT, noteDevices,
                                           feed_.get());
  cubeb_stream_params params{.format = CUBEB_SAMPLE_S16NE,
                             .rate = rate,
                             .channels = 1,
                             .layout = CUBEB_LAYOUT_MONO,
                             .prefs = CUBEB_STREAM_PREF_NONE};
  std::uint32_t latency = 0;
  if (cubeb_get_min_latency(context_, &params, &latency) != CUBEB_OK) latency = 0;
  latency = std::max(latency, rate / kCallbacksPerSecond);
  const cubeb_devid handle = followsDefault() ? nullptr : device_.handle;
  return cubeb_stream_init(context_, &stream_, "Cello", handle, &params, nullptr, nullptr, latency,
                           takeSamples, noteState, feed_.get()) == CUBEB_OK &&
         cubeb_stream_start(stream_) == CUBEB_OK;
}

CaptureStream::~CaptureStream() {
  if (stream_) {
    cubeb_stream_stop(stream_);
    cubeb_stream_destroy(stream_);
  }
  if (!context_) return;
  if (feed_) {
    cubeb_register_device_collection_changed(context_, CUBEB_DEVICE_TYPE_INPUT, nullptr, nullptr);
  }
  cubeb_destroy(context_);
}

bool CaptureStream::isAlive() {
  if (feed_->failed) return false;
  if (!feed_->devicesChanged.exchange(false)) return true;
  const auto devices = enumerateInputs(context_);
  if (!devices) return false;
  devices_ = *devices;
  const InputDevice* best = chooseInput(devices_, wanted_);
  if (!best) return false;
  return followsDefault() ? best->isDefault : best->id == device_.id;
}

std::string CaptureStream::deviceName() const {
  cubeb_device* current = nullptr;
  if (cubeb_stream_get_current_device(stream_, &current) != CUBEB_OK) return device_.name;
  const std::string id = current->input_name ? current->input_name : device_.id;
  cubeb_stream_device_destroy(stream_, current);
  const auto known = std::find_if(devices_.begin(), devices_.end(),
                                  [&](const InputDevice& device) { return device.id == id; });
  return known == devices_.end() ? id : known->name;
}

std::string CaptureStream::whyNoDevice() const {
  return wanted_.empty() ? "no microphone" : "no microphone called \"" + wanted_ + '"';
}

}  // namespace endpin
