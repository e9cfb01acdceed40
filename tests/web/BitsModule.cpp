// The estimators as a module that the test can call. Thread: main.
#include <array>

#include "audio/CaptureFormat.h"
#include "audio/FineEstimator.h"
#include "audio/PitchEstimator.h"

#define ENDPIN_EXPORT(name) extern "C" __attribute__((export_name(name)))

namespace endpin {
namespace {

std::array<std::int16_t, kBlockSamples> block;
PitchEstimator estimator;
FineEstimator fineEstimator;

}  // namespace

ENDPIN_EXPORT("block") std::int16_t* blockToFill() {
  return block.data();
}
ENDPIN_EXPORT("estimate") float estimate(std::uint32_t byteLength) {
  return estimator.getFreqFromBuffer(block.data(), byteLength, kCaptureRate);
}
ENDPIN_EXPORT("fineEstimate") float fineEstimate(std::uint32_t byteLength) {
  return fineEstimator.estimate(block.data(), byteLength);
}

}  // namespace endpin
