#include "adapters/cubeb/OutputStream.h"

#include <cubeb/cubeb.h>

#include <algorithm>

namespace endpin {
struct OutputStream::Callbacks {
  // Thread: audio. Realtime-safe: yes.
  static long takeFrames(cubeb_stream* /*stream*/, void* user, const void* /*input*/, void* output,
                         long frames) {
    OutputSource& source = static_cast<OutputStream*>(user)->source_;
    return static_cast<long>(source.fill(output, static_cast<std::uint32_t>(frames)));
  }

  static void noteState(cubeb_stream* /*stream*/, void* user, cubeb_state state) {
    auto* self = static_cast<OutputStream*>(user);
    if (state == CUBEB_STATE_DRAINED) self->ended_ = true;
    if (state == CUBEB_STATE_ERROR) self->failed_ = true;
    self->owner_.checkSoon();
  }
};

std::unique_ptr<OutputStream> OutputStream::open(const Format& format, OutputSource& source,
                                                 const SupervisedStream& owner) {
  std::unique_ptr<OutputStream> stream(new OutputStream(source, owner));
  return stream->start(format) ? std::move(stream) : nullptr;
}

bool OutputStream::start(const Format& format) {
  if (cubeb_init(&context_, "Endpin", nullptr) != CUBEB_OK) return false;
  cubeb_stream_params params{
      .format = CUBEB_SAMPLE_S16NE,
      .rate = format.rate,
      .channels = format.channels,
      .layout = format.channels == 1 ? CUBEB_LAYOUT_MONO : CUBEB_LAYOUT_STEREO,
      .prefs = CUBEB_STREAM_PREF_NONE};
  std::uint32_t latency = 0;
  if (cubeb_get_min_latency(context_, &params, &latency) != CUBEB_OK) latency = 0;
  latency = std::max(latency, format.rate * kLatency / 1000);
  return cubeb_stream_init(context_, &stream_, format.name, nullptr, nullptr, nullptr, &params,
                           latency, Callbacks::takeFrames, Callbacks::noteState,
                           this) == CUBEB_OK &&
         cubeb_stream_start(stream_) == CUBEB_OK;
}

OutputStream::~OutputStream() {
  if (stream_) {
    cubeb_stream_stop(stream_);
    cubeb_stream_destroy(stream_);
  }
  if (context_) cubeb_destroy(context_);
}

}  // namespace endpin
