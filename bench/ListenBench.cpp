// How fast the whole tuner listens: a sound file as the microphone, resampled, captured and judged
// at every tick, on the virtual clock.
#include <benchmark/benchmark.h>

#include "adapters/log/Logs.h"
#include "adapters/offline/CapturedSound.h"
#include "adapters/offline/FileMicrophone.h"
#include "adapters/offline/MemoryStore.h"
#include "adapters/offline/VirtualRunLoop.h"
#include "cli/Session.h"

namespace {

using namespace endpin;

constexpr double kSeconds = 15.0;  // of the recording of the four strings

// Items a second are seconds of sound a second.
void BM_Listen(benchmark::State& state) {
  NullLog log;
  for (auto _ : state) {
    CapturedSound sound{SoundFile(ENDPIN_FOUR_STRINGS)};
    VirtualRunLoop runLoop;
    FileMicrophone microphone(sound, runLoop);
    MemoryStore settings;
    saveEarlierRun(settings, 440);
    Session session({microphone, runLoop, settings, log});
    session.start();
    runLoop.runUntil(kSeconds);
    if (session.beeps() != 4) state.SkipWithError("the four strings were not heard");
  }
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(kSeconds));
}
BENCHMARK(BM_Listen)->Unit(benchmark::kMillisecond);

}  // namespace
