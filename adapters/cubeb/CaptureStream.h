// One opened capture stream, and what its audio callback hands to the thread that listens.
#pragma once

#include <algorithm>
#include <atomic>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "adapters/cubeb/InputDevices.h"
#include "adapters/cubeb/StreamSupervisor.h"
#include "adapters/posix/WakeUp.h"

struct cubeb;
struct cubeb_stream;

namespace endpin {

// Hands samples from one thread to another without a lock: the audio callback pushes, the listening
// thread pulls. What does not fit is dropped and counted.
class SampleRing {
 public:
  // Room for `capacity` samples at least.
  explicit SampleRing(std::size_t capacity)
      : samples_(std::bit_ceil(std::max<std::size_t>(capacity, 1))) {}

  // Thread: audio callback. Realtime-safe: yes.
  void push(std::span<const std::int16_t> samples) {
    const std::size_t end = end_.load(std::memory_order_relaxed);
    const std::size_t used = end - begin_.load(std::memory_order_acquire);
    const std::size_t count = std::min(samples.size(), samples_.size() - used);
    for (std::size_t i = 0; i < count; ++i) at(end + i) = samples[i];
    end_.store(end + count, std::memory_order_release);
    dropped_.fetch_add(samples.size() - count, std::memory_order_relaxed);
  }

  // Moves the oldest samples into `samples` and returns how many there were.
  // Thread: the one that pulls.
  std::size_t pull(std::span<std::int16_t> samples) {
    const std::size_t begin = begin_.load(std::memory_order_relaxed);
    const std::size_t held = end_.load(std::memory_order_acquire) - begin;
    const std::size_t count = std::min(samples.size(), held);
    for (std::size_t i = 0; i < count; ++i) samples[i] = at(begin + i);
    begin_.store(begin + count, std::memory_order_release);
    return count;
  }

  // Samples that found no room so far. Thread: any.
  [[nodiscard]] std::uint64_t dropped() const { return dropped_.load(std::memory_order_relaxed); }

 private:
  std::int16_t& at(std::size_t position) { return samples_[position & (samples_.size() - 1)]; }

  std::vector<std::int16_t> samples_;  // as many as a power of two
  // Positions count on for ever; where they differ lie the samples held.
  std::atomic<std::size_t> begin_ = 0;  // written by the one that pulls
  std::atomic<std::size_t> end_ = 0;    // written by the audio callback
  std::atomic<std::uint64_t> dropped_ = 0;
};

// What the callbacks of one opened stream share with the threads that use it. It outlives the
// stream, however long the library takes to let go of that.
struct StreamState {
  // Room for a second of sound.
  StreamState(std::uint32_t deviceRate, const ThreadWakeUp& wakeUp, const SupervisedStream& stream)
      : rate(deviceRate), heard(wakeUp), owner(stream), ring(deviceRate) {}

  // Nothing will come any more: both sides are told. Thread: any. Realtime-safe: yes.
  void fail() {
    failed = true;
    heard.signal();
    owner.checkSoon();
  }

  const std::uint32_t rate;  // hertz
  const ThreadWakeUp& heard;
  const SupervisedStream& owner;
  SampleRing ring;
  std::atomic<bool> failed = false;
  std::atomic<bool> devicesChanged = false;  // a device came or went
};

// The stream, with the library context that it needs. Every call may wait for the sound server, the
// destructor included: only the control thread makes them.
class CaptureStream {
 public:
  // Opens and starts the microphone of that name or id, or the default one for the empty name.
  // `heard` is signalled when samples came and when the stream failed, and `owner` is asked to
  // check when it failed or a device came or went; both outlive the stream. Null when there is none
  // or it cannot be opened; `reason` then says so.
  static std::unique_ptr<CaptureStream> open(const std::string& wanted, const ThreadWakeUp& heard,
                                             const SupervisedStream& owner, std::string& reason);
  ~CaptureStream();
  CaptureStream(const CaptureStream&) = delete;
  CaptureStream& operator=(const CaptureStream&) = delete;

  [[nodiscard]] const std::shared_ptr<StreamState>& state() const { return state_; }

  // Whether sound can still be expected: no failure, and its microphone has not gone. (The sound
  // server moves the stream of a microphone that goes to whatever it has, a speaker if need be.)
  [[nodiscard]] bool isAlive();

  // The device that is heard now, for people. A stream on the default microphone follows the
  // default.
  [[nodiscard]] std::string deviceName() const;

 private:
  explicit CaptureStream(const std::string& wanted) : wanted_(wanted) {}

  [[nodiscard]] bool connect();
  [[nodiscard]] bool choose();
  [[nodiscard]] bool start(const ThreadWakeUp& heard, const SupervisedStream& owner);
  [[nodiscard]] std::string whyNoDevice() const;
  [[nodiscard]] bool followsDefault() const { return wanted_.empty() && device_.isDefault; }

  const std::string wanted_;
  std::vector<InputDevice> devices_;  // as enumerated last
  InputDevice device_;                // the one chosen
  bool unsettled_ = false;            // devices changed just before the last check
  std::shared_ptr<StreamState> state_;
  cubeb* context_ = nullptr;
  cubeb_stream* stream_ = nullptr;
};

}  // namespace endpin
