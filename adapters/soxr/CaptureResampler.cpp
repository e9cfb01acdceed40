#include "adapters/soxr/CaptureResampler.h"

#include <soxr.h>

#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <string>

#include "audio/CaptureFormat.h"

namespace endpin {
namespace {

constexpr std::size_t kStep = 1024;   // output samples asked for at a time
constexpr unsigned kLog2DftSize = 8;  // small transforms: 45 ms of delay instead of 156

// Where nobody can catch it, as in a page, the program ends.
[[noreturn]] void fail(const char* why) {
#ifdef __cpp_exceptions
  throw std::runtime_error(std::string("cannot resample: ") + why);
#else
  std::fputs(why, stderr);
  std::abort();
#endif
}

void check(soxr_error_t error) {
  if (error) fail(error);
}

}  // namespace

void CaptureResampler::Delete::operator()(soxr* resampler) const {
  soxr_delete(resampler);
}

CaptureResampler::CaptureResampler(double inputRate) {
  soxr_io_spec_t format = soxr_io_spec(SOXR_INT16_I, SOXR_INT16_I);
  format.flags = SOXR_NO_DITHER;  // else silence is not silent
  const soxr_quality_spec_t quality = soxr_quality_spec(SOXR_HQ, 0);
  soxr_runtime_spec_t runtime = soxr_runtime_spec(1);
  runtime.log2_min_dft_size = kLog2DftSize;
  runtime.log2_large_dft_size = kLog2DftSize;

  soxr_error_t error = nullptr;
  resampler_.reset(soxr_create(inputRate, kCaptureRate, 1, &error, &format, &quality, &runtime));
  check(error);
  if (!resampler_) fail("out of memory");
}

void CaptureResampler::process(std::span<const std::int16_t> input,
                               std::vector<std::int16_t>& output) {
  if (input.empty()) return;  // to the library a null input is the end
  for (bool full = true; full || !input.empty();) {
    std::size_t used = 0;
    full = step(input.data(), input.size(), used, output) == kStep;
    if (used == 0 && !full) return;
    input = input.subspan(used);
  }
}

void CaptureResampler::flush(std::vector<std::int16_t>& output) {
  std::size_t used = 0;
  while (step(nullptr, 0, used, output) > 0) {
  }
}

// One call into the library; a null `input` tells it that the end has come. Returns how many
// samples were appended, at most kStep.
std::size_t CaptureResampler::step(const std::int16_t* input, std::size_t inputSize,
                                   std::size_t& used, std::vector<std::int16_t>& output) {
  const std::size_t before = output.size();
  output.resize(before + kStep);
  std::size_t made = 0;
  const soxr_error_t error =
      soxr_process(resampler_.get(), input, inputSize, &used, output.data() + before, kStep, &made);
  output.resize(before + made);
  check(error);
  return made;
}

}  // namespace endpin
