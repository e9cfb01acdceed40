// What the tuner does when the sound server or the microphone goes away, hangs, or never was there.
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <filesystem>
#include <optional>
#include <thread>
#include <utility>

#include "tests/e2e/VirtualMicrophone.h"

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
  return !tick.green() && tick.power < 0.002;
}

class LostMicrophone : public VirtualMicrophone {
 protected:
  // A note that is still sounding whenever a test looks. Written once: it takes a while.
  std::string longNote(double frequency) {
    const std::string path = server_.folder().file(std::to_string(frequency) + ".wav");
    if (!std::filesystem::exists(path)) writeWav(path, bowedTone(48000.0, 30.0, frequency));
    return path;
  }

  // Expects a program that hears a tone begun now within three seconds, and judges it. Each call
  // takes another string, so that a block from before the break cannot pass for a new one.
  void expectHearingAgain(LiveListener& listener, int string, const char* after) {
    const std::string note = longNote(kCelloStrings[string].frequency);
    const auto start = Clock::now();
    const auto player = server_.playIntoMicrophone(note);
    EXPECT_TRUE(listener.hears(sounding, 10s)) << listener.child().errors();
    const double heard = secondsSince(start);
    EXPECT_TRUE(listener.hears(greenAt(string), 5s)) << listener.child().errors();
    std::printf("  %s: hears after %.2f s, green after %.2f s\n", after, heard,
                secondsSince(start));
    EXPECT_LT(heard, 3.0) << after;
  }
};

TEST_F(LostMicrophone, ListeningResumesWhenTheServerOrTheMicrophoneComesBack) {
  LiveListener listener(server_.environment());
  expectHearingAgain(listener, 1, "started");
  {
    const auto player = server_.playIntoMicrophone(longNote(kCelloStrings[1].frequency));
    ASSERT_TRUE(listener.hears(greenAt(1), 5s));
    server_.kill();
    EXPECT_TRUE(listener.hears(cleared, 3s)) << "a dead server still has a level";
  }
  ASSERT_TRUE(server_.start()) << server_.reason();
  expectHearingAgain(listener, 0, "server back");
  {
    const auto player = server_.playIntoMicrophone(longNote(kCelloStrings[0].frequency));
    ASSERT_TRUE(listener.hears(greenAt(0), 5s));
    ASSERT_TRUE(server_.removeMicrophone());
    EXPECT_TRUE(listener.hears(cleared, 3s)) << "a lost microphone still has a level";
  }
  ASSERT_TRUE(server_.addMicrophone());
  expectHearingAgain(listener, 2, "microphone back");
  EXPECT_TRUE(listener.child().running());
  std::printf("%s", listener.child().errors().c_str());
}

// A server that hangs must not hold up the ticks: they never wait for it.
TEST_F(LostMicrophone, TicksGoOnWhileTheServerHangs) {
  LiveListener listener(server_.environment());
  expectHearingAgain(listener, 1, "started");
  const size_t before = listener.ticks().size();
  server_.freeze();
  std::this_thread::sleep_for(2s);
  const Ticks ticks = listener.ticks();
  server_.thaw();
  std::printf("  %zu ticks in 2 s, level at last %.4f\n", ticks.size() - before,
              ticks.back().power);
  EXPECT_GE(ticks.size() - before, 10U);  // some are late on a busy machine
  expectHearingAgain(listener, 0, "server thawed");
}

TEST_F(LostMicrophone, SignalsEndTheProgramEvenWhileTheServerHangs) {
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

TEST_F(LostMicrophone, WithoutAMicrophoneOneLineSaysSo) {
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

TEST_F(LostMicrophone, IsListedAndCanBeChosenByName) {
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
