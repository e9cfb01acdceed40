// What a rendered frame of the reference tone costs beside the one sine that it needs.
#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdint>
#include <vector>

#include "calibration/ToneSynthesizer.h"

namespace {

using endpin::AudioOutputBuffer;
using endpin::ToneSynthesizer;

constexpr std::uint32_t kFrames = 512;

void BM_SineFloor(benchmark::State& state) {
  std::vector<double> out(kFrames);
  double phase = 0;
  for (auto _ : state) {
    for (double& sample : out) {
      sample = std::sin(phase);
      phase += 0.0313;
      if (phase > 6.283185307179586) phase -= 6.283185307179586;
    }
    benchmark::DoNotOptimize(out.data());
    benchmark::ClobberMemory();
  }
  state.SetItemsProcessed(state.iterations() * kFrames);
}
BENCHMARK(BM_SineFloor);

void BM_RenderTone(benchmark::State& state) {
  ToneSynthesizer synthesizer;
  synthesizer.curTone = ToneSynthesizer::Square;
  synthesizer.toneFrequency = 220.0F;
  std::vector<std::uint32_t> words(kFrames);
  AudioOutputBuffer buffer{words.data()};
  for (auto _ : state) {
    ToneSynthesizer::renderTone(&synthesizer, kFrames, {&buffer, 1});
    benchmark::ClobberMemory();
  }
  state.SetItemsProcessed(state.iterations() * kFrames);
}
BENCHMARK(BM_RenderTone);

}  // namespace
