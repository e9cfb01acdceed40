// What one estimate costs beside its transform.
#include <benchmark/benchmark.h>
#include <kissfft/kiss_fftr.h>

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <numbers>
#include <vector>

#include "audio/FineEstimator.h"
#include "audio/LumoListener.h"
#include "audio/PitchEstimator.h"

namespace {

using endpin::FineEstimator;
using endpin::LumoListener;
using endpin::PitchEstimator;

std::vector<std::int16_t> celloLikeBlock() {
  std::vector<std::int16_t> samples(4096);
  for (std::size_t n = 0; n < samples.size(); ++n) {
    double sum = 0;
    for (int h = 1; h <= 10; ++h) {
      sum += 4000.0 / h *
             std::sin(2 * std::numbers::pi * 146.83 * h * static_cast<double>(n) /
                      endpin::kCaptureRate);
    }
    samples[n] = static_cast<std::int16_t>(sum);
  }
  return samples;
}

// The transform alone, its configuration made and freed each time as an estimate does.
void BM_TransformFloor(benchmark::State& state) {
  const auto block = celloLikeBlock();
  std::vector<float> in(PitchEstimator::kTransformSize, 0.0F);
  std::vector<kiss_fft_cpx> out(PitchEstimator::kTransformSize);
  for (std::size_t i = 0; i < block.size(); ++i) in[i] = block[i];
  for (auto _ : state) {
    kiss_fftr_cfg configuration =
        kiss_fftr_alloc(PitchEstimator::kTransformSize, 0, nullptr, nullptr);
    kiss_fftr(configuration, in.data(), out.data());
    std::free(configuration);
    benchmark::DoNotOptimize(out.data());
    benchmark::ClobberMemory();
  }
}
BENCHMARK(BM_TransformFloor)->Unit(benchmark::kMicrosecond);

void BM_Estimate(benchmark::State& state) {
  const auto block = celloLikeBlock();
  const auto estimator = std::make_unique<PitchEstimator>();
  for (auto _ : state) {
    benchmark::DoNotOptimize(
        estimator->getFreqFromBuffer(block.data(), 8192, endpin::kCaptureRate));
  }
}
BENCHMARK(BM_Estimate)->Unit(benchmark::kMicrosecond);

void BM_FineEstimate(benchmark::State& state) {
  const auto block = celloLikeBlock();
  const auto estimator = std::make_unique<FineEstimator>();
  for (auto _ : state) benchmark::DoNotOptimize(estimator->estimate(block.data(), 8192));
}
BENCHMARK(BM_FineEstimate)->Unit(benchmark::kMicrosecond);

}  // namespace
