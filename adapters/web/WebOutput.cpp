#include "adapters/web/WebOutput.h"

#include "adapters/web/Host.h"

namespace endpin {

class WebOutput::Unit : public AudioOutputUnit {
 public:
  explicit Unit(WebOutput& output) : output_(output) {}
  ~Unit() override { stop(); }

  AudioStatus setStreamFormat(const AudioStreamFormat& /*format*/) override { return 0; }
  AudioStatus setRenderCallback(AudioRenderCallback /*callback*/, void* /*userData*/) override {
    return 0;
  }
  AudioStatus initialize() override { return 0; }
  AudioStatus start() override {
    output_.playing_ = this;
    return 0;
  }
  AudioStatus stop() final {
    if (output_.playing_ == this) output_.playing_ = nullptr;
    return 0;
  }

 private:
  WebOutput& output_;
};

std::unique_ptr<AudioOutputUnit> WebOutput::newOutputUnit() {
  return std::make_unique<Unit>(*this);
}

// What a tone that is silent would sound like is no news.
void WebOutput::follow(const ToneSynthesizer& synthesizer) {
  Tone tone;
  if (playing_) {
    tone = {true, synthesizer.toneFrequency, static_cast<std::uint32_t>(synthesizer.curTone)};
  }
  if (tone == told_) return;
  told_ = tone;
  host::tone(tone.playing, tone.frequency, tone.waveform);
}

}  // namespace endpin
