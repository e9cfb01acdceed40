// Follows the volume of the sound server's default sink and keeps the newest value at hand, so that
// whoever asks never waits. A server that is missing, hangs or dies is tried again every second; it
// is never started.
//
// Made and destroyed on one thread. The connection lives on a thread of the library.
#pragma once

#include <atomic>
#include <memory>

struct pa_context;
struct pa_mainloop_api;
struct pa_server_info;
struct pa_sink_info;
struct pa_threaded_mainloop;
struct pa_time_event;
struct timeval;

namespace endpin {

class OutputVolume {
 public:
  // Returns at once; the first value arrives when the server answers.
  OutputVolume();
  // Does not wait for the server, whatever state it is in.
  ~OutputVolume();
  OutputVolume(const OutputVolume&) = delete;
  OutputVolume& operator=(const OutputVolume&) = delete;

  // 0 to 1 as desktops show it, the average of the channels; 0 when muted, 1 when louder than the
  // nominal volume or not known.
  // Thread: any. Never waits.
  [[nodiscard]] float value() const { return value_.load(std::memory_order_relaxed); }

 private:
  static constexpr float kUnknown = 1.0F;

  // All of these run on the library's thread.
  static void onConnectTime(pa_mainloop_api* api, pa_time_event* event, const timeval* due,
                            void* self);
  static void onStateChange(pa_context* context, void* self);
  static void onServer(pa_context* context, const pa_server_info* server, void* self);
  static void onSink(pa_context* context, const pa_sink_info* sink, int end, void* self);
  void connect();
  void disconnect();
  void follow();
  void query();
  void retryLater();

  std::atomic<float> value_{kUnknown};
  pa_threaded_mainloop* loop_ = nullptr;
  pa_context* context_ = nullptr;
  pa_time_event* connectTime_ = nullptr;
};

}  // namespace endpin
