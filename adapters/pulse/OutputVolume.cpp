#include "adapters/pulse/OutputVolume.h"

#include <pulse/pulseaudio.h>

#include <algorithm>

namespace endpin {
namespace {

constexpr pa_usec_t kRetry = PA_USEC_PER_SEC;

timeval fromNow(pa_usec_t microseconds) {
  timeval time{};
  pa_gettimeofday(&time);
  pa_timeval_add(&time, microseconds);
  return time;
}

// Nobody waits for the answer of an operation: its callback brings it.
void release(pa_operation* operation) {
  if (operation) pa_operation_unref(operation);
}

float audibleVolume(const pa_sink_info& sink) {
  if (sink.mute) return 0;
  const auto average = static_cast<float>(pa_cvolume_avg(&sink.volume));
  return std::min(average / static_cast<float>(PA_VOLUME_NORM), 1.0F);
}

}  // namespace

OutputVolume::OutputVolume() : loop_(pa_threaded_mainloop_new()) {
  if (!loop_) return;
  // The first connection is made on the library's thread too: looking a remote server up may take
  // its time.
  pa_mainloop_api* api = pa_threaded_mainloop_get_api(loop_);
  const timeval now = fromNow(0);
  connectTime_ = api->time_new(api, &now, onConnectTime, this);
  pa_threaded_mainloop_start(loop_);
}

OutputVolume::~OutputVolume() {
  if (!loop_) return;
  pa_threaded_mainloop_stop(loop_);
  disconnect();
  pa_threaded_mainloop_get_api(loop_)->time_free(connectTime_);
  pa_threaded_mainloop_free(loop_);
}

void OutputVolume::onConnectTime(pa_mainloop_api*, pa_time_event*, const timeval*, void* self) {
  static_cast<OutputVolume*>(self)->connect();
}

void OutputVolume::connect() {
  disconnect();
  context_ = pa_context_new(pa_threaded_mainloop_get_api(loop_), "Endpin");
  if (!context_) return retryLater();
  pa_context_set_state_callback(context_, onStateChange, this);
  // What fails later reaches the state callback.
  if (pa_context_connect(context_, nullptr, PA_CONTEXT_NOAUTOSPAWN, nullptr) < 0) retryLater();
}

void OutputVolume::disconnect() {
  if (!context_) return;
  pa_context_set_state_callback(context_, nullptr, nullptr);
  pa_context_disconnect(context_);
  pa_context_unref(context_);
  context_ = nullptr;
}

void OutputVolume::onStateChange(pa_context* context, void* self) {
  auto* volume = static_cast<OutputVolume*>(self);
  switch (pa_context_get_state(context)) {
    case PA_CONTEXT_READY:
      return volume->follow();
    case PA_CONTEXT_FAILED:
    case PA_CONTEXT_TERMINATED:
      return volume->retryLater();
    default:
      return;
  }
}

void OutputVolume::follow() {
  pa_context_set_subscribe_callback(
      context_,
      [](pa_context*, pa_subscription_event_type_t, std::uint32_t, void* self) {
        static_cast<OutputVolume*>(self)->query();
      },
      this);
  constexpr auto kEvents =
      static_cast<pa_subscription_mask_t>(PA_SUBSCRIPTION_MASK_SINK | PA_SUBSCRIPTION_MASK_SERVER);
  release(pa_context_subscribe(context_, kEvents, nullptr, nullptr));
  query();
}

void OutputVolume::query() {
  release(pa_context_get_server_info(context_, onServer, this));
}

void OutputVolume::onServer(pa_context* context, const pa_server_info* server, void* self) {
  if (!server || !server->default_sink_name) {
    static_cast<OutputVolume*>(self)->value_ = kUnknown;
    return;
  }
  release(pa_context_get_sink_info_by_name(context, server->default_sink_name, onSink, self));
}

// Called once with the sink and once more at the end of the list; with a negative end when the sink
// has gone meanwhile.
void OutputVolume::onSink(pa_context*, const pa_sink_info* sink, int end, void* self) {
  auto* volume = static_cast<OutputVolume*>(self);
  if (end < 0) volume->value_ = kUnknown;
  if (end == 0 && sink) volume->value_ = audibleVolume(*sink);
}

void OutputVolume::retryLater() {
  value_ = kUnknown;
  const timeval due = fromNow(kRetry);
  pa_threaded_mainloop_get_api(loop_)->time_restart(connectTime_, &due);
}

}  // namespace endpin
