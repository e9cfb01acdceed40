#include "adapters/pulse/SoundServer.h"

#include <pulse/pulseaudio.h>

#include <algorithm>
#include <utility>

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

// The names of the microphone's device, or of the source where it has none for people.
SoundServer::Source describe(const pa_source_info& source, const std::string& defaultSource) {
  SoundServer::Source microphone{.id = source.name, .name = source.description};
  microphone.muted = source.mute != 0 || pa_cvolume_max(&source.volume) == PA_VOLUME_MUTED;
  microphone.isDefault = microphone.id == defaultSource;
  return microphone;
}

// A socket with nothing in it is no microphone.
bool isMicrophone(const pa_source_info& source) {
  const bool empty = source.active_port && source.active_port->available == PA_PORT_AVAILABLE_NO;
  return source.monitor_of_sink == PA_INVALID_INDEX && !empty;
}

float audibleVolume(const pa_sink_info& sink) {
  if (sink.mute) return 0;
  const auto average = static_cast<float>(pa_cvolume_avg(&sink.volume));
  return std::min(average / static_cast<float>(PA_VOLUME_NORM), 1.0F);
}

}  // namespace

SoundServer::SoundServer() : loop_(pa_threaded_mainloop_new()) {
  if (!loop_) return;
  // The first connection is made on the library's thread too: looking a remote server up may take
  // its time.
  pa_mainloop_api* api = pa_threaded_mainloop_get_api(loop_);
  const timeval now = fromNow(0);
  connectTime_ = api->time_new(api, &now, onConnectTime, this);
  pa_threaded_mainloop_start(loop_);
}

SoundServer::~SoundServer() {
  if (!loop_) return;
  pa_threaded_mainloop_stop(loop_);
  disconnect();
  pa_threaded_mainloop_get_api(loop_)->time_free(connectTime_);
  pa_threaded_mainloop_free(loop_);
}

void SoundServer::onConnectTime(pa_mainloop_api*, pa_time_event*, const timeval*, void* self) {
  static_cast<SoundServer*>(self)->connect();
}

void SoundServer::connect() {
  disconnect();
  context_ = pa_context_new(pa_threaded_mainloop_get_api(loop_), "Endpin");
  if (!context_) return retryLater();
  pa_context_set_state_callback(context_, onStateChange, this);
  // What fails later reaches the state callback.
  if (pa_context_connect(context_, nullptr, PA_CONTEXT_NOAUTOSPAWN, nullptr) < 0) retryLater();
}

void SoundServer::disconnect() {
  if (!context_) return;
  pa_context_set_state_callback(context_, nullptr, nullptr);
  pa_context_disconnect(context_);
  pa_context_unref(context_);
  context_ = nullptr;
}

void SoundServer::onStateChange(pa_context* context, void* self) {
  auto* volume = static_cast<SoundServer*>(self);
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

void SoundServer::follow() {
  pa_context_set_subscribe_callback(
      context_,
      [](pa_context*, pa_subscription_event_type_t, std::uint32_t, void* self) {
        static_cast<SoundServer*>(self)->query();
      },
      this);
  constexpr auto kEvents = static_cast<pa_subscription_mask_t>(
      PA_SUBSCRIPTION_MASK_SINK | PA_SUBSCRIPTION_MASK_SOURCE | PA_SUBSCRIPTION_MASK_SERVER);
  release(pa_context_subscribe(context_, kEvents, nullptr, nullptr));
  query();
}

void SoundServer::query() {
  release(pa_context_get_server_info(context_, onServer, this));
}

void SoundServer::onServer(pa_context* context, const pa_server_info* info, void* self) {
  auto* server = static_cast<SoundServer*>(self);
  if (!info) return;
  server->defaultSource_ = info->default_source_name ? info->default_source_name : "";
  server->listing_ = {.connected = true, .microphones = {}};
  release(pa_context_get_source_info_list(context, onSource, self));
  if (!info->default_sink_name) {
    server->volume_ = kUnknown;
    return;
  }
  release(pa_context_get_sink_info_by_name(context, info->default_sink_name, onSink, self));
}

// Called for each source and once more at the end of the list. A question that comes before the
// answer to the one before begins the listing anew, so that a source may be told twice.
void SoundServer::onSource(pa_context*, const pa_source_info* source, int end, void* self) {
  auto* server = static_cast<SoundServer*>(self);
  if (end != 0) return server->publish(server->listing_);
  if (!source || !isMicrophone(*source)) return;
  Source microphone = describe(*source, server->defaultSource_);
  auto& all = server->listing_.microphones;
  std::erase_if(all, [&](const Source& one) { return one.id == microphone.id; });
  all.push_back(std::move(microphone));
}

// Called once with the sink and once more at the end of the list; with a negative end when the sink
// has gone meanwhile.
void SoundServer::onSink(pa_context*, const pa_sink_info* sink, int end, void* self) {
  auto* volume = static_cast<SoundServer*>(self);
  if (end < 0) volume->volume_ = kUnknown;
  if (end == 0 && sink) volume->volume_ = audibleVolume(*sink);
}

void SoundServer::publish(Sources sources) {
  known_ = true;
  if (*sources_ == sources) return;  // it is written on this thread only
  auto published = std::make_shared<const Sources>(std::move(sources));
  const std::lock_guard lock(mutex_);
  sources_ = std::move(published);
}

std::shared_ptr<const SoundServer::Sources> SoundServer::sources() const {
  const std::lock_guard lock(mutex_);
  return sources_;
}

void SoundServer::retryLater() {
  volume_ = kUnknown;
  publish({});
  const timeval due = fromNow(kRetry);
  pa_threaded_mainloop_get_api(loop_)->time_restart(connectTime_, &due);
}

}  // namespace endpin
