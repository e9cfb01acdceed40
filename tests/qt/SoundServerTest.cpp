#include "adapters/pulse/SoundServer.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <cstdlib>
#include <memory>
#include <thread>

#include "tests/support/PrivateSoundServer.h"

namespace endpin {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

// The volume, and each microphone, with "!" for the default one and "-" for a muted one.
std::string described(const SoundServer& server) {
  const auto sources = server.sources();
  std::string all = std::to_string(std::lround(100 * server.outputVolume())) + "%";
  if (!sources->connected) all += " no server";
  for (const auto& microphone : sources->microphones) {
    all += ' ' + microphone.id + (microphone.isDefault ? "!" : "") + (microphone.muted ? "-" : "");
  }
  return all;
}

TEST(SoundServer, FollowsTheVolumeAndTheMicrophonesThroughTheServersLife) {
  testing::PrivateSoundServer server;
  for (const auto& [name, value] : server.environment()) setenv(name.c_str(), value.c_str(), 1);
  auto followed = std::make_unique<SoundServer>();
  EXPECT_EQ(described(*followed), "100% no server");
  if (!server.start()) GTEST_SKIP() << server.reason();

  const auto comesTo = [&](const std::string& expected) {
    testing::soon(5s, [&] { return described(*followed) == expected; });
    EXPECT_EQ(described(*followed), expected);
  };
  const std::pair<const char*, const char*> steps[] = {
      {"set-sink-volume speaker 40%", "40% virtmic!"},
      {"set-sink-volume speaker 20% 80%", "50% virtmic!"},  // the average
      {"set-source-mute virtmic 1", "50% virtmic!-"},
      {"set-sink-mute speaker 1", "0% virtmic!-"},
      {"set-sink-volume micfeed 70%", "0% virtmic!-"},
      {"set-source-mute virtmic 0", "0% virtmic!"},
      {"set-default-sink micfeed", "70% virtmic!"},
      {"set-sink-volume micfeed 140%", "100% virtmic!"},
      {"set-source-volume virtmic 0", "100% virtmic!-"},
      {"set-sink-volume micfeed 30%", "30% virtmic!-"},
      {"set-source-volume virtmic 50%", "30% virtmic!"},
      {"load-module module-remap-source source_name=clip master=micfeed.monitor",
       "30% virtmic! clip"},
      {"set-default-source clip", "30% virtmic clip!"},
  };
  for (const auto& [words, expected] : steps) {
    ASSERT_TRUE(server.control(words)) << words;
    comesTo(expected);
  }
  ASSERT_TRUE(server.removeMicrophone());
  comesTo("30% clip!");
  server.kill();
  comesTo("100% no server");
  ASSERT_TRUE(server.start()) << server.reason();
  ASSERT_TRUE(server.control("set-sink-volume speaker 35%"));
  comesTo("35% virtmic!");

  server.freeze();
  const auto begin = Clock::now();
  followed = std::make_unique<SoundServer>();
  std::this_thread::sleep_for(100ms);
  followed.reset();
  EXPECT_LT(Clock::now() - begin, 2s) << "a hung server holds nobody up";
  server.thaw();
}

}  // namespace
}  // namespace endpin
