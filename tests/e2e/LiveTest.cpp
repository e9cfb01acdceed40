// The live path from the microphone to the green lamp, and what becomes of it when the sound server
// or the microphone goes away, hangs, or never was there.
#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <thread>

#include "tests/e2e/Listening.h"
#include "tests/support/PrivateSoundServer.h"

namespace endpin::testing {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

// Waits for a new tick of this kind; false when the time is up.
template <typename Condition>
bool hears(const ChildProcess& listener, Condition holds, std::chrono::milliseconds limit) {
  const auto old = static_cast<std::ptrdiff_t>(parseTicks(listener.output()).size());
  return soon(limit, [&] {
    const Ticks ticks = parseTicks(listener.output());
    return std::any_of(ticks.begin() + old, ticks.end(), holds);
  });
}

auto judges(int string, double a4 = 440.0) {
  return [string, a4](const Tick& tick) { return greenAt(string, tick, a4); };
}
bool cleared(const Tick& tick) {
  return !tick.green() && tick.power < 0.002;
}
// Cleared, and the block that was heard last is silent too.
bool silent(const Tick& tick) {
  return cleared(tick) && tick.frequency == 0.0F;
}

class Live : public ::testing::Test {
 protected:
  void SetUp() override {
    if (!server_.start()) GTEST_SKIP() << server_.reason();
  }

  ChildProcess listener(Command more = {}) const {
    more.insert(more.begin(), {"listen", "--json", "--a4", "440"});
    return ChildProcess(endpin(more), server_.environment());
  }

  // A tone that is still sounding whenever a test looks.
  std::string longTone(int string) const {
    const std::string path = server_.folder().file(kCelloStrings[string].note);
    writeWav(path, bowedTone(48000.0, 30.0, kCelloStrings[string].frequency));
    return path;
  }

  // Expects a program that hears a tone begun now within three seconds, and judges it, until `end`
  // ends that. Each call takes another string, so that a block from before a break cannot pass for
  // a new one.
  template <typename End>
  void expectHearing(ChildProcess& listener, int string, End end) const {
    const std::string tone = longTone(string);
    const auto start = Clock::now();
    const auto player = server_.playIntoMicrophone(tone);
    EXPECT_TRUE(hears(
        listener, [](const Tick& tick) { return tick.power > 0.01; }, 10s));
    EXPECT_LT(Clock::now() - start, 3s);
    EXPECT_TRUE(hears(listener, judges(string), 5s)) << listener.errors();
    end();
  }

  PrivateSoundServer server_;
};

// The second ear listens where the first is deaf to C2, which has no bin at 443; and through a
// microphone without bass.
struct Ear {
  Command how;
  double a4;          // hertz
  double corner = 0;  // of the microphone, hertz; 0: none
};
class LiveEars : public Live, public ::testing::WithParamInterface<Ear> {};
INSTANTIATE_TEST_SUITE_P(Both, LiveEars,
                         ::testing::Values(Ear{{}, 440.0},
                                           Ear{{"--fine", "--a4", "443"}, 443.0, 180.0}));

// One after the other, to one listener: its own green, ring and beep, and no other's.
TEST_P(LiveEars, EveryStringOfACelloLightsItsOwnGreen) {
  if (const std::string why = whyNoSampledCello(); !why.empty()) GTEST_SKIP() << why;
  // The first launch, which is silent, is over: what it saved is what the next one finds.
  ChildProcess first(endpin({"listen", "--json"}), server_.environment());
  ASSERT_TRUE(hears(first, cleared, 5s)) << first.errors();
  first.signal(SIGTERM);
  EXPECT_EQ(first.waitFor(5s), 0);
  const auto& [how, a4, corner] = GetParam();
  Command listen = {"listen", "--json"};
  listen.insert(listen.end(), how.begin(), how.end());
  const ChildProcess listener(endpin(listen), server_.environment());
  const std::string file = server_.folder().file("note.wav");
  for (int string = 0; string < 4; ++string) {
    const auto& [note, midiNote, frequency] = kCelloStrings[string];
    SCOPED_TRACE(note);
    Sound played =
        sampledCello({.midiNote = midiNote, .frequency = frequency * a4 / 440.0, .seconds = 3.0});
    if (corner > 0) played = scaledToRms(throughSmallMicrophone(played, corner), 0.1);
    writeWav(file, played);
    EXPECT_TRUE(hears(listener, silent, 5s)) << listener.errors();
    const std::size_t begin = parseTicks(listener.output()).size();
    const auto player = server_.playIntoMicrophone(file);
    EXPECT_TRUE(hears(listener, judges(string, a4), 5s)) << listener.errors();
    EXPECT_TRUE(hears(listener, cleared, 8s)) << "the note has an end";
    const Ticks ticks = parseTicks(listener.output());
    for (std::size_t n = begin; n < ticks.size(); ++n) {
      ASSERT_TRUE(!ticks[n].green() || ticks[n].note == note) << "at " << ticks[n].time;
    }
    EXPECT_TRUE(ticks.back().rings[static_cast<std::size_t>(string)]);
    EXPECT_GE(ticks.back().beeps, string + 1) << "one for each string so far";
  }
}

TEST_F(Live, ListeningResumesWhenTheServerOrTheMicrophoneComesBack) {
  ChildProcess listener = this->listener();
  const auto says = [&listener](const char* what) {
    EXPECT_TRUE(soon(3s, [&] { return listener.errors().ends_with(what); })) << listener.errors();
  };
  ASSERT_TRUE(hears(listener, silent, 5s));
  ASSERT_TRUE(server_.control("set-source-mute virtmic 1"));
  says("Microphone is muted: Turn it on in the system's sound settings\n");
  ASSERT_TRUE(server_.control("set-source-mute virtmic 0"));
  says("listening again: Remapped Monitor of Null Output\n");
  expectHearing(listener, 1, [&] {
    server_.kill();
    EXPECT_TRUE(hears(listener, cleared, 3s)) << "a dead server still has a level";
    says("No sound here: The system's sound service is not running\n");
  });
  ASSERT_TRUE(server_.start()) << server_.reason();
  expectHearing(listener, 0, [&] {
    ASSERT_TRUE(server_.removeMicrophone());
    EXPECT_TRUE(hears(listener, cleared, 3s)) << "a lost microphone still has a level";
    says("Microphone not found: Plug it in, or choose another in the settings\n");
  });
  ASSERT_TRUE(server_.addMicrophone());
  expectHearing(listener, 2, [&] { server_.freeze(); });
  const std::size_t before = parseTicks(listener.output()).size();
  std::this_thread::sleep_for(2s);
  const std::size_t after = parseTicks(listener.output()).size();
  server_.thaw();
  EXPECT_GE(after - before, 10U) << "a server that hangs holds up the ticks";
  expectHearing(listener, 3, [] {});
  EXPECT_TRUE(listener.running());
}

TEST_F(Live, SignalsEndTheProgramEvenWhileTheServerHangs) {
  for (const auto& [number, hung] :
       {std::pair(SIGTERM, false), {SIGTERM, true}, {SIGINT, false}, {SIGINT, true}}) {
    SCOPED_TRACE("signal " + std::to_string(number) + (hung ? ", hung server" : ""));
    ChildProcess listener = this->listener();
    ASSERT_TRUE(hears(
        listener, [](const Tick&) { return true; }, 5s));
    if (hung) {
      server_.freeze();
      std::this_thread::sleep_for(700ms);
    }
    const auto start = Clock::now();
    listener.signal(number);
    const std::optional<int> code = listener.waitFor(5s);
    EXPECT_LT(Clock::now() - start, 2s);
    EXPECT_TRUE(code == 0 || code == 128 + number) << code.value_or(-1);
    if (hung) server_.thaw();
  }
}

TEST_F(Live, TheMicrophoneIsListedAndChosenByNameAndItsAbsenceToldInALine) {
  const Finished list = runToEnd(endpin({"listen", "--list-inputs"}), 5s, server_.environment());
  EXPECT_EQ(list.exitCode, 0) << list.errors;
  EXPECT_NE(list.output.find("virtmic"), std::string::npos) << list.output;
  ChildProcess chosen = listener({"--input-device", "virtmic"});
  const auto player = server_.playIntoMicrophone(longTone(0));
  EXPECT_TRUE(hears(chosen, judges(0), 8s)) << chosen.errors();
  const std::pair<Command, const char*> absences[] = {
      {{"--input-device", "no-such"}, "Microphone not found: Plug it in"},
      {{}, "No microphone: Plug one in"}};
  for (const auto& [more, words] : absences) {
    ChildProcess missing = listener(more);
    EXPECT_EQ(missing.waitFor(5s), 1) << missing.errors();
    EXPECT_EQ(missing.output(), "");
    EXPECT_EQ(std::ranges::count(missing.errors(), '\n'), 1) << missing.errors();
    EXPECT_NE(missing.errors().find(words), std::string::npos) << missing.errors();
    server_.removeMicrophone();
  }
}

}  // namespace
}  // namespace endpin::testing
