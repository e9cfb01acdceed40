#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>

#include "adapters/soxr/CaptureResampler.h"

namespace endpin {
namespace {

std::int16_t toneAt(double seconds) {
  const double value = 12000 * std::sin(2 * std::numbers::pi * 220 * seconds);
  return static_cast<std::int16_t>(std::lrint(value));
}

std::vector<std::int16_t> resampled(double rate, const std::vector<std::int16_t>& input,
                                    std::size_t chunk) {
  CaptureResampler resampler(rate);
  std::vector<std::int16_t> output;
  for (std::size_t i = 0; i < input.size(); i += chunk) {
    const std::size_t size = std::min(chunk, input.size() - i);
    resampler.process(std::span(input).subspan(i, size), output);
    resampler.process({}, output);  // nothing is not the end
  }
  resampler.flush(output);
  return output;
}

// Sample i of the output is the tone at i / 7019.5 s: no delay, no drift, no sample too many.
TEST(CaptureResampler, KeepsATonesPitchAndItsPlaceInTime) {
  for (const double rate : {8000.0, 11025.0, 44100.0, 48000.0, 96000.0, 192000.0}) {
    for (const std::size_t chunk : {1U, 480U, 5000U}) {
      if (chunk == 1 && rate > 8000) continue;  // one is enough to tell
      std::vector<std::int16_t> input(static_cast<std::size_t>(rate * 4));
      for (std::size_t i = 0; i < input.size(); ++i) {
        input[i] = toneAt(static_cast<double>(i) / rate);
      }
      const auto output = resampled(rate, input, chunk);
      ASSERT_EQ(output.size(), 28078U) << rate;
      int worst = 0;
      for (std::size_t i = 300; i < output.size() - 300; ++i) {
        const int expected = toneAt(static_cast<double>(i) / 7019.5);
        worst = std::max(worst, std::abs(output[i] - expected));
      }
      EXPECT_LE(worst, 2) << rate << " Hz in chunks of " << chunk;
    }
  }
}

TEST(CaptureResampler, SilenceStaysSilentAndFullScaleIsClipped) {
  const auto silence = resampled(48000, std::vector<std::int16_t>(48000, 0), 480);
  EXPECT_TRUE(std::all_of(silence.begin(), silence.end(), [](auto s) { return s == 0; }));

  // A square wave overshoots where its edges are rounded off.
  std::vector<std::int16_t> square(48000);
  for (std::size_t i = 0; i < square.size(); ++i) square[i] = i / 100 % 2 ? 32767 : -32768;
  const auto output = resampled(48000, square, 480);
  for (std::size_t i = 10; i + 10 < output.size(); ++i) {
    const double phase = std::fmod(static_cast<double>(i) / 7019.5 * 480, 2);
    if (phase > 0.2 && phase < 0.8) {
      ASSERT_LT(output[i], -20000) << i;
    } else if (phase > 1.2 && phase < 1.8) {
      ASSERT_GT(output[i], 20000) << i;
    }
  }
}

}  // namespace
}  // namespace endpin
