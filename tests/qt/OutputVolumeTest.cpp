#include "adapters/pulse/OutputVolume.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <memory>
#include <thread>

#include "tests/support/PrivateSoundServer.h"

namespace endpin {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

TEST(OutputVolume, FollowsTheServerThroughItsLife) {
  testing::PrivateSoundServer server;
  for (const auto& [name, value] : server.environment()) setenv(name.c_str(), value.c_str(), 1);
  auto volume = std::make_unique<OutputVolume>();
  EXPECT_EQ(volume->value(), 1.0F) << "no server";
  if (!server.start()) GTEST_SKIP() << server.reason();

  const auto tell = [&](std::vector<std::string> words) {
    words.insert(words.begin(), "pactl");
    return testing::runToEnd(words, 5s, server.environment()).exitCode == 0;
  };
  const auto comesTo = [&](float expected) {
    const auto deadline = Clock::now() + 5s;
    while (std::abs(volume->value() - expected) > 0.005F && Clock::now() < deadline) {
      std::this_thread::sleep_for(5ms);
    }
    return std::abs(volume->value() - expected) <= 0.005F;
  };

  ASSERT_TRUE(tell({"set-sink-volume", "speaker", "40%"}));
  EXPECT_TRUE(comesTo(0.4F)) << volume->value();
  ASSERT_TRUE(tell({"set-sink-volume", "speaker", "20%", "80%"}));
  EXPECT_TRUE(comesTo(0.5F)) << "the average, not " << volume->value();
  ASSERT_TRUE(tell({"set-sink-mute", "speaker", "1"}));
  EXPECT_TRUE(comesTo(0.0F)) << "muted";
  ASSERT_TRUE(tell({"set-sink-volume", "micfeed", "70%"}));
  ASSERT_TRUE(tell({"set-default-sink", "micfeed"}));
  EXPECT_TRUE(comesTo(0.7F)) << "another default sink";
  ASSERT_TRUE(tell({"set-sink-volume", "micfeed", "140%"}));
  EXPECT_TRUE(comesTo(1.0F)) << "louder than nominal";
  ASSERT_TRUE(tell({"set-sink-volume", "micfeed", "30%"}));
  EXPECT_TRUE(comesTo(0.3F));

  server.kill();
  EXPECT_TRUE(comesTo(1.0F)) << "the server died";
  ASSERT_TRUE(server.start()) << server.reason();
  ASSERT_TRUE(tell({"set-sink-volume", "speaker", "35%"}));
  EXPECT_TRUE(comesTo(0.35F)) << "the server came back";

  server.freeze();
  const auto begin = Clock::now();
  volume = std::make_unique<OutputVolume>();
  std::this_thread::sleep_for(100ms);
  volume.reset();
  EXPECT_LT(Clock::now() - begin, 2s) << "a hung server holds nobody up";
  server.thaw();
}

}  // namespace
}  // namespace endpin
