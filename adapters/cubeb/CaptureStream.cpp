#include "adapters/cubeb/CaptureStream.h"

#include <cubeb/cubeb.h>

#include <algorithm>
#include <utility>

namespace endpin {
namespace {

constexpr std::uint32_t kUsualRate = 48000;  // hertz, when the device tells none
// Milliseconds, unless the device needs more. The sound server is asked for pieces of a quarter of
// it: each wakes us, and a level asked for in between is that of the piece before.
constexpr std::uint32_t kCaptureLatency = 160;

// Thread: audio callback. Realtime-safe: yes.
long takeSamples(cubeb_stream* /*stream*/, void* user, const void* input, void* /*output*/,
                 long frames) {
  const auto count = static_cast<std::size_t>(frames);
  auto* state = static_cast<StreamState*>(user);
  state->ring.push({static_cast<const std::int16_t*>(input), count});
  state->heard.signal();
  return frames;
}

void noteState(cubeb_stream* /*stream*/, void* user, cubeb_state state) {
  const bool ended = state == CUBEB_STATE_ERROR || state == CUBEB_STATE_DRAINED;
  if (ended) static_cast<StreamState*>(user)->fail();
}

void noteDevices(cubeb* /*context*/, void* user) {
  auto* state = static_cast<StreamState*>(user);
  state->devicesChanged = true;
  state->owner.checkSoon();
}

}  // namespace

std::unique_ptr<CaptureStream> CaptureStream::open(const std::string& wanted,
                                                   const ThreadWakeUp& heard,
                                                   const SupervisedStream& owner,
                                                   std::string& reason) {
  std::unique_ptr<CaptureStream> stream(new CaptureStream(wanted));
  if (!stream->connect()) {
    reason = "no sound system";
  } else if (!stream->choose()) {
    reason = stream->whyNoDevice();
  } else if (!stream->start(heard, owner)) {
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

bool CaptureStream::start(const ThreadWakeUp& heard, const SupervisedStream& owner) {
  const std::uint32_t rate = device_.rate > 0 ? device_.rate : kUsualRate;
  state_ = std::make_shared<StreamState>(rate, heard, owner);
  // Not every sound system tells of devices; then a stream that fails is all there is to go by.
  cubeb_register_device_collection_changed(context_, CUBEB_DEVICE_TYPE_INPUT, noteDevices,
                                           state_.get());
  cubeb_stream_params params{.format = CUBEB_SAMPLE_S16NE,
                             .rate = rate,
                             .channels = 1,
                             .layout = CUBEB_LAYOUT_MONO,
                             .prefs = CUBEB_STREAM_PREF_NONE};
  std::uint32_t latency = 0;
  if (cubeb_get_min_latency(context_, &params, &latency) != CUBEB_OK) latency = 0;
  latency = std::max(latency, rate * kCaptureLatency / 1000);
  const cubeb_devid handle = followsDefault() ? nullptr : device_.handle;
  return cubeb_stream_init(context_, &stream_, "Cello", handle, &params, nullptr, nullptr, latency,
                           takeSamples, noteState, state_.get()) == CUBEB_OK &&
         cubeb_stream_start(stream_) == CUBEB_OK;
}

CaptureStream::~CaptureStream() {
  if (stream_) {
    cubeb_stream_stop(stream_);
    cubeb_stream_destroy(stream_);
  }
  if (!context_) return;
  if (state_) {
    cubeb_register_device_collection_changed(context_, CUBEB_DEVICE_TYPE_INPUT, nullptr, nullptr);
  }
  cubeb_destroy(context_);
}

// The sound server tells of a device before it has settled on a default: it is asked at once and
// once more at the next check.
bool CaptureStream::isAlive() {
  if (state_->failed) return false;
  const bool changed = state_->devicesChanged.exchange(false);
  if (!std::exchange(unsettled_, changed) && !changed) return true;
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
