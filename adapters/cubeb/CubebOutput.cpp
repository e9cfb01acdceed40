#include "adapters/cubeb/CubebOutput.h"

#include <cubeb/cubeb.h>

#include <chrono>
#include <cmath>
#include <optional>
#include <thread>
#include <utility>

#include "adapters/cubeb/OutputStream.h"
#include "adapters/cubeb/RenderGate.h"
#include "adapters/cubeb/StreamSupervisor.h"

namespace endpin {
namespace {

constexpr std::uint32_t kFlags = kAudioFormatFlagIsSignedInteger | kAudioFormatFlagIsPacked;

// Whether every frame is a word of two 16-bit samples, at a rate that the library can be told.
bool isStereoWords(const AudioStreamFormat& format) {
  return format.mFormatID == kAudioFormatLinearPCM && format.mFormatFlags == kFlags &&
         format.mChannelsPerFrame == 2 && format.mBitsPerChannel == 16 &&
         format.mBytesPerFrame == 4 && format.mSampleRate >= 1000 && format.mSampleRate <= 192000 &&
         std::trunc(format.mSampleRate) == format.mSampleRate;
}

// A tone for as long as it is wanted.
class ToneStream : public SupervisedStream {
 public:
  ToneStream(std::uint32_t rate, std::shared_ptr<RenderGate> gate)
      : format_{"Tuning fork", rate, 2}, gate_(std::move(gate)) {}

  Outcome open() override {
    stream_ = OutputStream::open(format_, *gate_, *this);
    return stream_ ? Outcome::Open : Outcome::Missing;
  }
  Outcome check() override {
    if (!stream_->failed()) return Outcome::Open;
    stream_.reset();
    return Outcome::Missing;
  }
  // The end of the tone fades out, and what the device still holds of it is heard.
  void close() override {
    if (stream_ && !stream_->failed()) {
      for (int wait = 0; wait < 40 && !gate_->isSilent(); ++wait) {
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
      }
      std::this_thread::sleep_for(std::chrono::milliseconds(OutputStream::kLatency));
    }
    stream_.reset();
  }

 private:
  const OutputStream::Format format_;
  const std::shared_ptr<RenderGate> gate_;
  std::unique_ptr<OutputStream> stream_;
};

class CubebOutputUnit : public AudioOutputUnit {
 public:
  // The gate goes first: the stream may take for ever to close.
  ~CubebOutputUnit() override {
    if (gate_) gate_->shut();
  }

  AudioStatus setStreamFormat(const AudioStreamFormat& format) override {
    if (gate_) return CUBEB_ERROR;
    if (!isStereoWords(format)) return CUBEB_ERROR_INVALID_FORMAT;
    rate_ = static_cast<std::uint32_t>(format.mSampleRate);
    return CUBEB_OK;
  }

  AudioStatus setRenderCallback(AudioRenderCallback callback, void* userData) override {
    if (gate_ || !callback) return CUBEB_ERROR;
    callback_ = callback;
    userData_ = userData;
    return CUBEB_OK;
  }

  AudioStatus initialize() override {
    if (gate_ || rate_ == 0 || !callback_) return CUBEB_ERROR;
    gate_ = std::make_shared<RenderGate>(callback_, userData_);
    supervisor_.emplace(std::make_shared<ToneStream>(rate_, gate_));
    return CUBEB_OK;
  }

  AudioStatus start() override {
    if (!gate_) return CUBEB_ERROR;
    if (supervisor_->wanted()) gate_->dip();
    gate_->mute(false);
    supervisor_->open();
    return CUBEB_OK;
  }

  // Muted as well: closing takes its time, and a callback that nobody hears shall not go on.
  AudioStatus stop() override {
    if (!gate_) return CUBEB_ERROR;
    gate_->mute(true);
    supervisor_->close();
    return CUBEB_OK;
  }

  [[nodiscard]] bool isRunning() const override {
    return supervisor_ && supervisor_->wanted() && gate_->wasAsked();
  }

 private:
  std::uint32_t rate_ = 0;  // hertz; 0: not set
  AudioRenderCallback callback_ = nullptr;
  void* userData_ = nullptr;
  std::shared_ptr<RenderGate> gate_;
  std::optional<StreamSupervisor> supervisor_;
};

}  // namespace

std::unique_ptr<AudioOutputUnit> CubebOutput::newOutputUnit() {
  return std::make_unique<CubebOutputUnit>();
}

}  // namespace endpin
