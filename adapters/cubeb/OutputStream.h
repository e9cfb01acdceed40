// One opened output stream on the default device, with the library context that it needs. It
// follows the default device when that changes. Every call may wait for the sound server, the
// destructor included: only the control thread makes them.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>

#include "adapters/cubeb/StreamSupervisor.h"

struct cubeb;
struct cubeb_stream;

namespace endpin {

// Where the samples come from. It outlives the stream.
class OutputSource {
 public:
  // Writes `frames` interleaved frames of 16-bit samples and returns how many it wrote; fewer end
  // the sound.
  // Thread: audio. Realtime-safe: yes, it must not allocate, lock or wait.
  virtual std::uint32_t fill(void* output, std::uint32_t frames) noexcept = 0;

 protected:
  ~OutputSource() = default;
};

class OutputStream {
 public:
  struct Format {
    const char* name;        // for people, in the sound server's lists
    std::uint32_t rate;      // hertz
    std::uint32_t channels;  // 1 or 2
  };

  // Milliseconds, unless the device needs more. Half of it crackles on a busy machine; more is
  // heard as a delay when the pitch changes.
  static constexpr std::uint32_t kLatency = 80;

  // Opens a stream that sounds at once and wakes its owner's supervisor when it ended or failed.
  // Null when there is no sound system or it has no output.
  static std::unique_ptr<OutputStream> open(const Format& format, OutputSource& source,
                                            const SupervisedStream& owner);
  // The source is not asked any more when it returns.
  ~OutputStream();
  OutputStream(const OutputStream&) = delete;
  OutputStream& operator=(const OutputStream&) = delete;

  // Everything that the source wrote has been heard, and it wrote all.
  [[nodiscard]] bool ended() const { return ended_; }
  // Nothing will be heard any more.
  [[nodiscard]] bool failed() const { return failed_; }

 private:
  struct Callbacks;  // what the library calls

  OutputStream(OutputSource& source, const SupervisedStream& owner)
      : source_(source), owner_(owner) {}

  [[nodiscard]] bool start(const Format& format);

  OutputSource& source_;
  const SupervisedStream& owner_;
  std::atomic<bool> ended_ = false;
  std::atomic<bool> failed_ = false;
  cubeb* context_ = nullptr;
  cubeb_stream* stream_ = nullptr;
};

}  // namespace endpin
