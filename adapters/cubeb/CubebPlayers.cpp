#include "adapters/cubeb/CubebOutput.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <utility>
#include <vector>

#include "adapters/cubeb/OutputStream.h"
#include "adapters/cubeb/StreamSupervisor.h"
#include "adapters/sndfile/SoundFile.h"

namespace endpin {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

constexpr auto kLatestBegin = 500ms;  // after play
// A player is replaced at each appearance of the screen, which must not stand still for long.
constexpr auto kPatience = 50ms;
constexpr auto kDrainLimit = 2s;  // for the device to play what it was given

struct Samples {
  std::uint32_t rate = 0;  // hertz
  std::vector<std::int16_t> mono;

  [[nodiscard]] Clock::duration length() const {
    return std::chrono::milliseconds(1000 * mono.size() / rate);
  }
};

// Throws SoundFileError.
Samples readWhole(const std::string& path) {
  SoundFile file(path);
  Samples samples{.rate = static_cast<std::uint32_t>(std::lround(file.rate())), .mono = {}};
  std::array<std::int16_t, 4096> chunk{};
  while (const std::size_t count = file.read(chunk)) {
    samples.mono.insert(samples.mono.end(), chunk.begin(), chunk.begin() + count);
  }
  return samples;
}

// One sound, played once each time it is wanted.
class SoundStream final : public SupervisedStream, private OutputSource {
 public:
  explicit SoundStream(Samples samples) : samples_(std::move(samples)) {}

  // Begins to count before the stream is wanted. Thread: main.
  void ask() { asked_ = Clock::now().time_since_epoch().count(); }

  Outcome open() override {
    position_ = 0;
    if (!tooLate()) stream_ = OutputStream::open({"Beep", samples_.rate, 1}, *this, *this);
    return stream_ ? Outcome::Open : Outcome::Finished;
  }
  Outcome check() override {
    const bool over = stream_->ended() || stream_->failed() ||
                      sinceAsked() > kLatestBegin + samples_.length() + kDrainLimit;
    return over ? Outcome::Finished : Outcome::Open;
  }
  void close() override { stream_.reset(); }

 private:
  std::uint32_t fill(void* output, std::uint32_t frames) noexcept override {
    if (position_ == 0 && tooLate()) return 0;
    const auto count = std::min<std::size_t>(frames, samples_.mono.size() - position_);
    std::memcpy(output, samples_.mono.data() + position_, count * sizeof(std::int16_t));
    position_ += count;
    return static_cast<std::uint32_t>(count);
  }

  [[nodiscard]] Clock::duration sinceAsked() const {
    return Clock::now().time_since_epoch() - Clock::duration(asked_);
  }
  [[nodiscard]] bool tooLate() const { return sinceAsked() > kLatestBegin; }

  const Samples samples_;
  std::atomic<Clock::rep> asked_ = 0;  // when
  std::size_t position_ = 0;           // of the control thread; of the audio thread while open
  std::unique_ptr<OutputStream> stream_;
};

class CubebPlayer : public AudioPlayer {
 public:
  explicit CubebPlayer(Samples samples)
      : stream_(std::make_shared<SoundStream>(std::move(samples))),
        supervisor_(stream_, kPatience) {}

  void play() override {
    if (supervisor_.wanted()) return;
    stream_->ask();
    supervisor_.open();
  }

 private:
  const std::shared_ptr<SoundStream> stream_;
  StreamSupervisor supervisor_;
};

}  // namespace

std::unique_ptr<AudioPlayer> CubebPlayers::playerWithContentsOf(const std::string& path) {
  try {
    return std::make_unique<CubebPlayer>(readWhole(path));
  } catch (const SoundFileError&) {
    return nullptr;
  }
}

}  // namespace endpin
