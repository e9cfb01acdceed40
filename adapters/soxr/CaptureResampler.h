// Converts one channel of 16-bit samples from a device's or a file's rate to the capture rate.
// Output sample i stands for the instant i / 7019.5 s of the input; it comes some 45 ms of sound
// later and in bursts. Silence stays silence.
//
// Thread: one at a time. Allocates nothing per call beyond what the library needs.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

struct soxr;

namespace endpin {

class CaptureResampler {
 public:
  // `inputRate` in hertz, above 0. Throws std::runtime_error when the library refuses it; a
  // program without exceptions ends.
  explicit CaptureResampler(double inputRate);

  // Takes all of `input` and appends what comes out to `output`.
  void process(std::span<const std::int16_t> input, std::vector<std::int16_t>& output);

  // The input has ended: appends the rest. In all as many samples come out as the input's duration
  // holds at the capture rate, rounded. Nothing may be processed afterwards.
  void flush(std::vector<std::int16_t>& output);

 private:
  struct Delete {
    void operator()(soxr* resampler) const;
  };

  std::size_t step(const std::int16_t* input, std::size_t inputSize, std::size_t& used,
                   std::vector<std::int16_t>& output);

  std::unique_ptr<soxr, Delete> resampler_;
};

}  // namespace endpin
