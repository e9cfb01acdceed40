// Hands samples from one thread to another without a lock: the audio callback pushes, our own
// thread pulls. What does not fit is dropped and counted.
#pragma once

#include <algorithm>
#include <atomic>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace endpin {

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

}  // namespace endpin
