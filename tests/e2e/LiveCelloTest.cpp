// The live path from the microphone to the green lamp: a sampled cello, retuned exactly, played
// into a virtual microphone.
#include <gtest/gtest.h>

#include <chrono>
#include <cstdio>
#include <thread>

#include "tests/e2e/VirtualMicrophone.h"

namespace endpin::testing {
namespace {

using namespace std::chrono_literals;

// Cleared, and the block that was heard last is silent too.
bool silent(const Tick& tick) {
  return !tick.green() && tick.power < 0.002 && tick.frequency == 0.0F;
}

// What the program said while one note was held.
struct HeldNote {
  Ticks all;
  Ticks steady;         // the last one and a half seconds, the attack long past
  std::size_t rigGaps;  // gaps that the sound server itself tore into the note
};

HeldNote hold(const PrivateSoundServer& server, LiveListener& listener, int string,
              const std::string& file) {
  const size_t before = listener.ticks().size();
  const auto witness = server.record("virtmic");
  const auto player = server.playIntoMicrophone(file);
  EXPECT_TRUE(listener.hears(greenAt(string), 5s)) << listener.child().errors();
  std::this_thread::sleep_for(700ms);
  const size_t steady = listener.ticks().size();
  std::this_thread::sleep_for(1500ms);
  const Ticks ticks = listener.ticks();
  const auto from = [&ticks](size_t n) {
    return Ticks(ticks.begin() + static_cast<std::ptrdiff_t>(n), ticks.end());
  };
  const auto parts = partsBetweenSilences(PrivateSoundServer::recorded(witness));
  return {from(before), from(steady), parts.size() - 1};
}

// A note that the server itself tore says little about how steadily it is judged: it is played
// again, twice.
HeldNote heldWhole(const PrivateSoundServer& server, LiveListener& listener, int string,
                   const std::string& file) {
  for (int attempt = 1;; ++attempt) {
    EXPECT_TRUE(listener.hears(silent, 5s)) << listener.child().errors();
    HeldNote note = hold(server, listener, string, file);
    if (note.rigGaps == 0 || attempt == 3) return note;
    std::printf("  the sound server left %zu gaps\n", note.rigGaps);
  }
}

void expectJudgedLive(const HeldNote& note, int string) {
  for (const Tick& tick : note.all) {
    if (tick.green()) {
      ASSERT_EQ(tick.note, kCelloStrings[string].note) << "at " << tick.time;
    }
  }
  EXPECT_TRUE(note.all.back().rings[static_cast<size_t>(string)]);
  EXPECT_GE(note.all.back().beeps, string + 1);  // one for each string so far
  const int inTune = countOf(note.steady, greenAt(string));
  std::printf("  %s live: %d of %zu steady ticks in tune\n", kCelloStrings[string].note, inTune,
              note.steady.size());
  if (note.rigGaps > 0) return;
  for (const Tick& tick : note.steady) EXPECT_GT(tick.power, 0.1) << "a gap at " << tick.time;
  EXPECT_GE(note.steady.size(), 10U);
  EXPECT_GE(inTune, kLeastShareLive[string] * static_cast<double>(note.steady.size()));
}

TEST_F(VirtualMicrophone, EveryStringOfASampledCelloLightsItsOwnGreen) {
  if (const std::string why = whyNoSampledCello(); !why.empty()) GTEST_SKIP() << why;
  LiveListener listener(server_.environment());
  for (int string = 0; string < 4; ++string) {
    SCOPED_TRACE(kCelloStrings[string].note);
    const std::string file = server_.folder().file("note.wav");
    CelloNote note{kCelloStrings[string].midiNote, kCelloStrings[string].frequency};
    note.seconds = 5.0;
    writeWav(file, sampledCello(note));
    expectJudgedLive(heldWhole(server_, listener, string, file), string);
  }
}

}  // namespace
}  // namespace endpin::testing
