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

TEST(SoundServer, FollowsTheVolumeThroughTheServersLife) {
  testing::PrivateSoundServer server;
  for (const auto& [name, value] : server.environment()) setenv(name.c_str(), value.c_str(), 1);
  auto followed = std::make_unique<SoundServer>();
  EXPECT_EQ(followed->outputVolume(), 1.0F) << "no server";
  if (!server.start()) GTEST_SKIP() << server.reason();

  const auto comesTo = [&](float expected) {
    const auto deadline = Clock::now() + 5s;
    const auto is = [&] { return std::abs(followed->outputVolume() - expected) <= 0.005F; };
    while (!is() && Clock::now() < deadline) std::this_thread::sleep_for(5ms);
    EXPECT_TRUE(is()) << "not " << expected << " but " << followed->outputVolume();
  };
  const auto after = [&](std::vector<std::string> words, float expected) {
    words.insert(words.begin(), "pactl");
    ASSERT_EQ(testing::runToEnd(words, 5s, server.environment()).exitCode, 0) << words[1];
    comesTo(expected);
  };
  after({"set-sink-volume", "speaker", "40%"}, 0.4F);
  after({"set-sink-volume", "speaker", "20%", "80%"}, 0.5F);  // the average
  after({"set-sink-mute", "speaker", "1"}, 0.0F);
  after({"set-sink-volume", "micfeed", "70%"}, 0.0F);
  after({"set-default-sink", "micfeed"}, 0.7F);
  after({"set-sink-volume", "micfeed", "140%"}, 1.0F);
  after({"set-sink-volume", "micfeed", "30%"}, 0.3F);
  server.kill();
  comesTo(1.0F);
  ASSERT_TRUE(server.start()) << server.reason();
  after({"set-sink-volume", "speaker", "35%"}, 0.35F);

  server.freeze();
  const auto begin = Clock::now();
  followed = std::make_unique<SoundServer>();
  std::this_thread::sleep_for(100ms);
  followed.reset();
  EXPECT_LT(Clock::now() - begin, 2s) << "a hung server holds nobody up";
  server.thaw();
}

// "name", with "!" for the default one and "-" for a muted one.
std::string described(const SoundServer& server) {
  const auto sources = server.sources();
  std::string all = sources->connected ? "" : "no server";
  for (const auto& microphone : sources->microphones) {
    all += (all.empty() ? "" : " ") + microphone.id + (microphone.isDefault ? "!" : "") +
           (microphone.muted ? "-" : "");
  }
  return all;
}

TEST(SoundServer, KnowsTheMicrophonesAndTheirMutes) {
  testing::PrivateSoundServer server;
  for (const auto& [name, value] : server.environment()) setenv(name.c_str(), value.c_str(), 1);
  SoundServer followed;
  if (!server.start()) GTEST_SKIP() << server.reason();
  const auto comesTo = [&](const std::string& expected) {
    testing::soon(5s, [&] { return described(followed) == expected; });
    EXPECT_EQ(described(followed), expected);
  };
  comesTo("virtmic!");
  server.control("set-source-mute virtmic 1");
  comesTo("virtmic!-");
  server.control("set-source-mute virtmic 0");
  comesTo("virtmic!");
  server.control("set-source-volume virtmic 0");
  comesTo("virtmic!-");
  server.control("set-source-volume virtmic 50%");
  server.control("load-module module-remap-source source_name=clip master=micfeed.monitor");
  comesTo("virtmic! clip");
  server.control("set-default-source clip");
  comesTo("virtmic clip!");
  server.removeMicrophone();
  comesTo("clip!");
  server.kill();
  comesTo("no server");
}

}  // namespace
}  // namespace endpin
