#include "adapters/pulse/OutputVolume.h"

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

TEST(OutputVolume, FollowsTheServerThroughItsLife) {
  testing::PrivateSoundServer server;
  for (const auto& [name, value] : server.environment()) setenv(name.c_str(), value.c_str(), 1);
  auto volume = std::make_unique<OutputVolume>();
  EXPECT_EQ(volume->value(), 1.0F) << "no server";
  if (!server.start()) GTEST_SKIP() << server.reason();

  const auto comesTo = [&](float expected) {
    const auto deadline = Clock::now() + 5s;
    const auto is = [&] { return std::abs(volume->value() - expected) <= 0.005F; };
    while (!is() && Clock::now() < deadline) std::this_thread::sleep_for(5ms);
    EXPECT_TRUE(is()) << "not " << expected << " but " << volume->value();
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
  volume = std::make_unique<OutputVolume>();
  std::this_thread::sleep_for(100ms);
  volume.reset();
  EXPECT_LT(Clock::now() - begin, 2s) << "a hung server holds nobody up";
  server.thaw();
}

}  // namespace
}  // namespace endpin
