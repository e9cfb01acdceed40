// The live path: a sampled cello played into a virtual microphone on a private sound server, and
// what the tuner does when that server or that microphone goes away.
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <filesystem>
#include <optional>
#include <thread>

#include "tests/e2e/Listening.h"
#include "tests/support/PrivateSoundServer.h"

namespace endpin::testing {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

double secondsSince(Clock::time_point start) {
  return std::chrono::duration<double>(Clock::now() - start).count();
}

bool sounding(const Tick& tick) {
  return tick.power > 0.01;
}
bool cleared(const Tick& tick) {
  return !tick.green() && tick.frequency == 0.0F;
}
auto greenAt(int string) {
  return [string](const Tick& tick) {
    return tick.green() && inBand(string, static_cast<double>(tick.frequency));
  };
}

class VirtualMicrophone : public ::testing::Test {
 protected:
  void SetUp() override {
    if (!server_.start()) GTEST_SKIP() << server_.reason();
  }

  // A note that is still sounding whenever a test looks. Written once: it takes a while.
  std::string longNote(double frequency) {
    const std::string path = server_.folder().file(std::to_string(frequency) + ".wav");
    if (!std::filesystem::exists(path)) writeWav(path, bowedTone(48000.0, 30.0, frequency));
    return path;
  }

  // Expects a program that listens again, to a tone begun now, within three seconds.
  void expectHearingAgain(LiveListener& listener, const char* after) {
    const std::string note = longNote(kCelloStrings[1].frequency);
    const auto start = Clock::now();
    const auto player = server_.playIntoMicrophone(note);
    EXPECT_TRUE(listener.hears(sounding, 10s)) << listener.child().errors();
    const double seconds = secondsSince(start);
    std::printf("  hears again %.2f s after %s\n", seconds, after);
    EXPECT_LT(seconds, 3.0) << after;
    EXPECT_TRUE(listener.hears(greenAt(1), 5s));
  }

  PrivateSoundServer server_;
};

TEST_F(VirtualMicrophone, EveryStringOfASampledCelloLightsItsOwnGreen) {
  if (const std::string why = whyNoSampledCello(); !why.empty()) GTEST_SKIP() << why;
  std::vector<std::string> files;
  for (const CelloString& string : kCelloStrings) {
    files.push_back(server_.folder().file(std::string(string.note) + ".wav"));
    writeWav(files.back(), sampledCello({string.midiNote, string.frequency}));
  }
  LiveListener listener(server_.environment());
  for (const int string : {1, 0, 2, 3}) {
    SCOPED_TRACE(kCelloStrings[string].note);
    ASSERT_TRUE(listener.hears(cleared, 5s)) << listener.child().errors();
    const size_t before = listener.ticks().size();
    const int beepsBefore = listener.ticks().back().beeps;
    const auto player = server_.playIntoMicrophone(files[static_cast<size_t>(string)]);
    ASSERT_TRUE(listener.hears(greenAt(string), 5s)) << listener.child().errors();
    std::this_thread::sleep_for(2500ms);
    const Ticks ticks = listener.ticks();
    int inTune = 0;
    int steady = 0;
    for (size_t n = before; n < ticks.size(); ++n) {
      if (!ticks[n].green()) continue;
      ASSERT_EQ(ticks[n].note, kCelloStrings[string].note) << "at " << ticks[n].time;
      ++steady;
      inTune += greenAt(string)(ticks[n]) ? 1 : 0;
    }
    std::printf("  %s live: %d of %d ticks in tune\n", kCelloStrings[string].note, inTune, steady);
    EXPECT_GE(inTune, 0.95 * steady);
    EXPECT_TRUE(ticks.back().rings[static_cast<size_t>(string)]);
    EXPECT_GE(ticks.back().beeps, beepsBefore + 1);
  }
}

TEST_F(VirtualMicrophone, ListeningResumesWhenTheServerOrTheMicrophoneComesBack) {
  LiveListener listener(server_.environment());
  {
    const auto player = server_.playIntoMicrophone(longNote(kCelloStrings[1].frequency));
    ASSERT_TRUE(listener.hears(greenAt(1), 8s)) << listener.child().errors();
    server_.kill();
    EXPECT_TRUE(listener.hears(cleared, 3s)) << "a dead server still has a level";
  }
  ASSERT_TRUE(server_.start()) << server_.reason();
  expectHearingAgain(listener, "the server came back");
  ASSERT_TRUE(server_.removeMicrophone());
  EXPECT_TRUE(listener.hears(cleared, 3s)) << "a lost microphone still has a level";
  ASSERT_TRUE(server_.addMicrophone());
  expectHearingAgain(listener, "the microphone came back");
  EXPECT_TRUE(listener.child().running());
}

TEST_F(VirtualMicrophone, SignalsEndTheProgramEvenWhileTheServerHangs) {
  for (const int number : {SIGTERM, SIGINT}) {
    for (const bool hung : {false, true}) {
      SCOPED_TRACE("signal " + std::to_string(number) + (hung ? ", hung server" : ""));
      LiveListener listener(server_.environment());
      ASSERT_TRUE(listener.hears([](const Tick&) { return true; }, 5s));
      if (hung) {
        server_.freeze();
        std::this_thread::sleep_for(700ms);
      }
      const auto start = Clock::now();
      listener.child().signal(number);
      const std::optional<int> code = listener.child().waitFor(5s);
      std::printf("  signal %d%s: ended after %.2f s\n", number, hung ? ", hung server" : "",
                  secondsSince(start));
      EXPECT_LT(secondsSince(start), 2.0);
      EXPECT_TRUE(code == 0 || code == 128 + number) << code.value_or(-1);
      if (hung) server_.thaw();
    }
  }
}

TEST_F(VirtualMicrophone, WithoutAMicrophoneOneLineSaysSo) {
  Environment nobody = server_.environment();
  nobody["PULSE_SERVER"] = "unix:" + server_.folder().file("no-such-socket");
  Environment monitorsOnly = server_.environment();
  ASSERT_TRUE(server_.removeMicrophone());
  for (const auto& [what, environment] :
       {std::pair("no server", nobody), std::pair("no microphone", monitorsOnly)}) {
    const Finished finished = runToEnd(endpin({"listen", "--json"}), 5s, environment);
    EXPECT_EQ(finished.exitCode, 1) << what;
    EXPECT_EQ(finished.output, "") << what;
    EXPECT_EQ(std::count(finished.errors.begin(), finished.errors.end(), '\n'), 1)
        << what << ": " << finished.errors;
  }
}

TEST_F(VirtualMicrophone, IsListedAndCanBeChosenByName) {
  const Finished list = runToEnd(endpin({"listen", "--list-inputs"}), 5s, server_.environment());
  EXPECT_EQ(list.exitCode, 0) << list.errors;
  EXPECT_NE(list.output.find("virtmic"), std::string::npos) << list.output;
  LiveListener listener(server_.environment(), {"--input-device", "virtmic"});
  const auto player = server_.playIntoMicrophone(longNote(220.0));
  EXPECT_TRUE(listener.hears(greenAt(0), 8s)) << listener.child().errors();
  const Finished unknown = runToEnd(endpin({"listen", "--json", "--input-device", "no-such"}), 5s,
                                    server_.environment());
  EXPECT_EQ(unknown.exitCode, 1);
  EXPECT_EQ(std::count(unknown.errors.begin(), unknown.errors.end(), '\n'), 1) << unknown.errors;
}

}  // namespace
}  // namespace endpin::testing
