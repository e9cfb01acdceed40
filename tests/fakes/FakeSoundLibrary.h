// The sound library, driven by a test: a program whose one source includes this is linked with
// these functions and meets no other sound system. One stream at a time; the test is its audio
// thread.
#pragma once

#include <cubeb/cubeb.h>

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <mutex>
#include <span>
#include <string>
#include <utility>
#include <vector>

struct cubeb {};
struct cubeb_stream {
  std::string device;  // empty: whichever is the default
  cubeb_data_callback data;
  cubeb_state_callback state;
  void* user;
  bool isStarted = false;
};

namespace endpin::fakes {

struct FakeSoundLibrary {
  struct Input {
    const char* name;  // which is its id too
    bool isDefault = false;
  };

  // The microphones change, and an application that wants to know is told, or not.
  void change(std::vector<Input> newInputs, bool tells = true) {
    const std::lock_guard lock(mutex);
    inputs = std::move(newInputs);
    if (tells && tell) tell(nullptr, tellUser);
  }

  // These return whether a stream is started, and else do nothing.
  bool hear(std::span<const std::int16_t> samples) {
    return toStream([&](cubeb_stream& to) {
      to.data(&to, to.user, samples.data(), nullptr, static_cast<long>(samples.size()));
    });
  }
  bool render(std::span<std::uint32_t> frames) {
    return toStream([&](cubeb_stream& from) {
      from.data(&from, from.user, nullptr, frames.data(), static_cast<long>(frames.size()));
    });
  }
  bool fail() {
    return toStream([](cubeb_stream& to) { to.state(&to, to.user, CUBEB_STATE_ERROR); });
  }

  // Whatever meets the sound server waits while it hangs.
  void hang(bool on) {
    hangs = on;
    hangs.notify_all();
  }

  template <typename Duty>
  bool toStream(Duty duty) {
    const std::lock_guard lock(mutex);
    if (!stream || !stream->isStarted) return false;
    duty(*stream);
    return true;
  }

  std::atomic<int> contexts = 0;      // open now, or about to
  std::atomic<int> opens = 0;         // of streams, in vain or not
  std::atomic<bool> refuses = false;  // to open a stream
  std::atomic<bool> hangs = false;
  std::atomic<bool> isHung = false;  // somebody waited

  std::mutex mutex;  // guards the rest
  std::vector<Input> inputs;
  cubeb_stream* stream = nullptr;
  cubeb_device_collection_changed_callback tell = nullptr;
  void* tellUser = nullptr;
};
inline FakeSoundLibrary soundLibrary;

// The library, locked, once its server does not hang.
struct Met {
  Met() {
    if (soundLibrary.hangs) soundLibrary.isHung = true;
    soundLibrary.hangs.wait(true);
    lock.lock();
  }
  FakeSoundLibrary* operator->() const { return &soundLibrary; }
  std::unique_lock<std::mutex> lock{soundLibrary.mutex, std::defer_lock};
};

}  // namespace endpin::fakes

using endpin::fakes::Met;

int cubeb_init(cubeb** context, const char* /*name*/, const char* /*backend*/) {
  ++endpin::fakes::soundLibrary.contexts;
  const Met library;
  *context = new cubeb;
  return CUBEB_OK;
}

void cubeb_destroy(cubeb* context) {
  delete context;
  --Met()->contexts;
}

int cubeb_get_min_latency(cubeb* /*context*/, cubeb_stream_params* /*format*/,
                          std::uint32_t* /*frames*/) {
  return CUBEB_ERROR_NOT_SUPPORTED;
}

int cubeb_enumerate_devices(cubeb* /*context*/, cubeb_device_type /*type*/,
                            cubeb_device_collection* collection) {
  const Met library;
  collection->count = library->inputs.size();
  collection->device = new cubeb_device_info[collection->count]();
  std::ranges::transform(library->inputs, collection->device, [](const auto& input) {
    cubeb_device_info info{};
    info.devid = info.device_id = info.friendly_name = input.name;
    info.state = CUBEB_DEVICE_STATE_ENABLED;
    info.preferred = input.isDefault ? CUBEB_DEVICE_PREF_ALL : CUBEB_DEVICE_PREF_NONE;
    info.default_rate = 48000;
    return info;
  });
  return CUBEB_OK;
}

int cubeb_device_collection_destroy(cubeb* /*context*/, cubeb_device_collection* collection) {
  delete[] collection->device;
  return CUBEB_OK;
}

int cubeb_register_device_collection_changed(cubeb* /*context*/, cubeb_device_type /*type*/,
                                             cubeb_device_collection_changed_callback tell,
                                             void* user) {
  const Met library;
  library->tell = tell;
  library->tellUser = user;
  return CUBEB_OK;
}

int cubeb_stream_init(cubeb* /*context*/, cubeb_stream** stream, const char* /*name*/,
                      cubeb_devid input, cubeb_stream_params* /*inputFormat*/, cubeb_devid /*out*/,
                      cubeb_stream_params* /*outputFormat*/, unsigned /*latency*/,
                      cubeb_data_callback data, cubeb_state_callback state, void* user) {
  const Met library;
  ++library->opens;
  if (library->refuses) return CUBEB_ERROR;
  const char* device = input ? static_cast<const char*>(input) : "";
  *stream = library->stream = new cubeb_stream{device, data, state, user};
  return CUBEB_OK;
}

int cubeb_stream_start(cubeb_stream* stream) {
  const Met library;
  stream->isStarted = true;
  return CUBEB_OK;
}

int cubeb_stream_stop(cubeb_stream* stream) {
  const Met library;
  stream->isStarted = false;
  return CUBEB_OK;
}

void cubeb_stream_destroy(cubeb_stream* stream) {
  const Met library;
  library->stream = nullptr;
  delete stream;
}

// A stream whose microphone has gone hears what a speaker plays.
int cubeb_stream_get_current_device(cubeb_stream* stream, cubeb_device** device) {
  const Met library;
  const auto heard = std::ranges::find_if(library->inputs, [&](const auto& input) {
    return stream->device.empty() ? input.isDefault : stream->device == input.name;
  });
  const char* name = heard == library->inputs.end() ? "speaker.monitor" : heard->name;
  *device = new cubeb_device{.output_name = nullptr, .input_name = const_cast<char*>(name)};
  return CUBEB_OK;
}

int cubeb_stream_device_destroy(cubeb_stream* /*stream*/, cubeb_device* device) {
  delete device;
  return CUBEB_OK;
}
