// Follows what the sound server says of its devices and keeps the newest word at hand, so that
// whoever asks never waits: the volume of the default output, and the microphones with their mutes.
// A server that is missing, hangs or dies is tried again every second; it is never started.
//
// Made and destroyed on one thread. The connection lives on a thread of the library.
#pragma once

#include <atomic>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "ports/AudioSession.h"

struct pa_context;
struct pa_mainloop_api;
struct pa_server_info;
struct pa_sink_info;
struct pa_source_info;
struct pa_threaded_mainloop;
struct pa_time_event;
struct timeval;

namespace endpin {

class SoundServer {
 public:
  // A microphone: a source that does not just hear what a speaker plays.
  struct Source {
    std::string id;      // as the server names it
    std::string name;    // for people
    bool muted = false;  // or its volume is 0
    bool isDefault = false;
    bool operator==(const Source&) const = default;
  };
  struct Sources {
    bool connected = false;  // the server answers; what follows is empty otherwise
    std::vector<Source> microphones;
    bool operator==(const Sources&) const = default;
  };

  // Returns at once; the first values arrive when the server answers.
  SoundServer();
  // Does not wait for the server, whatever state it is in.
  ~SoundServer();
  SoundServer(const SoundServer&) = delete;
  SoundServer& operator=(const SoundServer&) = delete;

  // 0 to 1 as desktops show it, the average of the channels; 0 when muted, 1 when louder than the
  // nominal volume or not known.
  // Thread: any. Never waits.
  [[nodiscard]] float outputVolume() const { return volume_.load(std::memory_order_relaxed); }

  // As the server told last; the same object as long as that is the same. Thread: any. Never waits
  // for the server.
  [[nodiscard]] std::shared_ptr<const Sources> sources() const;

  // Whether the server has told anything yet, or has been found missing. Thread: any.
  [[nodiscard]] bool isKnown() const { return known_.load(std::memory_order_relaxed); }

 private:
  static constexpr float kUnknown = 1.0F;

  // All of these run on the library's thread.
  static void onConnectTime(pa_mainloop_api* api, pa_time_event* event, const timeval* due,
                            void* self);
  static void onStateChange(pa_context* context, void* self);
  static void onServer(pa_context* context, const pa_server_info* server, void* self);
  static void onSink(pa_context* context, const pa_sink_info* sink, int end, void* self);
  static void onSource(pa_context* context, const pa_source_info* source, int end, void* self);
  void connect();
  void disconnect();
  void follow();
  void query();
  void retryLater();
  void publish(Sources sources);

  std::atomic<float> volume_{kUnknown};
  std::atomic<bool> known_{false};
  mutable std::mutex mutex_;  // guards the pointer below
  std::shared_ptr<const Sources> sources_ = std::make_shared<const Sources>();

  pa_threaded_mainloop* loop_ = nullptr;
  pa_context* context_ = nullptr;
  pa_time_event* connectTime_ = nullptr;
  std::string defaultSource_;
  Sources listing_;  // while the server tells one source after the other
};

// The audio session of a desktop: there is nothing to configure, every program may play and record,
// and only the output volume is worth asking for. Thread: main, but for outputVolume (any).
class DesktopAudioSession final : public AudioSession {
 public:
  // `server` outlives the session.
  explicit DesktopAudioSession(const SoundServer& server) : server_(server) {}

  Error setCategory(AudioSessionCategory, std::uint32_t) override { return {}; }
  Error setMode(AudioSessionMode) override { return {}; }
  Error setActive(bool) override { return {}; }
  [[nodiscard]] float outputVolume() const override { return server_.outputVolume(); }

 private:
  const SoundServer& server_;
};

}  // namespace endpin
