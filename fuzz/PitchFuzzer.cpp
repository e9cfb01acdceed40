// Any samples through both estimators: each hears a pitch of its kind or none.
//
// An input is a list of blocks, each of its kind.
#include <fmt/format.h>
#include <fuzzer/FuzzedDataProvider.h>

#include <cmath>
#include <vector>

#include "audio/CaptureFormat.h"
#include "audio/FineEstimator.h"
#include "audio/PitchEstimator.h"
#include "fuzz/Fuzzing.h"

namespace endpin::fuzzing {
namespace {

constexpr int kMostBlocks = 20;  // a transform each

void hear(const std::vector<std::int16_t>& block, std::size_t byteLength) {
  static PitchEstimator estimator;
  static FineEstimator fine;
  const auto length = static_cast<std::uint32_t>(byteLength);
  const auto hertz =
      static_cast<double>(estimator.getFreqFromBuffer(block.data(), length, kCaptureRate));
  const double bin = hertz * PitchEstimator::kTransformSize / kCaptureRate;
  require(hertz >= 0 && hertz < kCaptureRate / 2 && std::abs(bin - std::round(bin)) < 0.01,
          "a frequency is a bin's of the spectrum", fmt::format("{}", hertz));
  const auto finely = static_cast<double>(fine.estimate(block.data(), length));
  require(finely == 0 || (finely >= FineEstimator::kLowestPitch && finely < kCaptureRate / 2),
          "a pitch lies in the spectrum", fmt::format("{}", finely));
}

// As long as the platform hands over, odd lengths included.
void hearBytes(FuzzedDataProvider& input) {
  const auto length = input.ConsumeIntegralInRange<std::size_t>(0, kBlockBytes);
  std::vector<std::int16_t> block(kBlockSamples);
  input.ConsumeData(block.data(), length);
  hear(block, length);
}

// The same few bytes again and again, loud and periodic.
void hearPattern(FuzzedDataProvider& input) {
  const auto pattern =
      input.ConsumeBytes<std::uint8_t>(input.ConsumeIntegralInRange<std::size_t>(1, 255));
  std::vector<std::int16_t> block(kBlockSamples);
  for (std::size_t n = 0; n < block.size() && !pattern.empty(); ++n) {
    block[n] = static_cast<std::int16_t>(pattern[n % pattern.size()] << 8);
  }
  hear(block, kBlockBytes);
}

}  // namespace
}  // namespace endpin::fuzzing

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace endpin::fuzzing;
  FuzzedDataProvider input(data, size);
  for (int i = 0; i < kMostBlocks && input.remaining_bytes() > 0; ++i) {
    input.ConsumeBool() ? hearBytes(input) : hearPattern(input);
  }
  return 0;
}
