// Launch, return to the foreground, prompts, answers and a second writer of the store, all at once
// on the threads of a desktop; the thread sanitizer looks on.
#include <chrono>

#include "adapters/rating/ThreadQueues.h"
#include "tests/rating/FakeRatingPlatform.h"

namespace endpin::fakes {
namespace {

TEST(RatingThreads, LaunchForegroundAndPromptsAtOnce) {
  constexpr std::int64_t kRounds = 300;
  FakeRatingPlatform world;
  auto queues = std::make_unique<ThreadQueues>();
  world.queues = queues.get();
  world.store.values = {{UsageBook::kCurrentVersion, "1.0"}, {UsageBook::kFirstUseDate, 1.0}};
  world.name(FakeRatingPlatform::kModern);
  RatingPrompt* seen[4] = {};
  {
    std::vector<std::jthread> threads;
    for (auto& one : seen) {
      threads.emplace_back([&one] { one = RatingPrompt::sharedInstance().get(); });
    }
  }
  for (const auto* one : seen) EXPECT_EQ(one, &world.prompt());

  std::jthread otherWriter([&](const std::stop_token& stop) {
    while (!stop.stop_requested()) world.store.setInteger("savedSliderValue", 5);
  });
  for (std::int64_t i = 0; i < kRounds; ++i) {
    RatingPrompt::appLaunched(i % 2 == 0);
    RatingPrompt::appEnteredForeground(i % 3 == 0);
    RatingPrompt::userDidSignificantEvent(true);
    RatingPrompt::setUsesUntilPrompt(i);
    RatingPrompt::tryToShowPrompt();
    world.advance(0.001);
    if (i % 7 == 0) world.resign();
    if (i % 10 == 9 && world.prompt().isRatingAlertVisible()) world.alert->press(1);
  }
  const auto counted = [&] { return world.store.integerForKey(UsageBook::kUseCount); };
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
  while (counted() < 2 * kRounds && std::chrono::steady_clock::now() < deadline) world.advance(0);
  EXPECT_EQ(counted(), 2 * kRounds);  // none is lost, whoever counts
  EXPECT_GT(world.alertsMade, 0);

  // An end in the midst of work.
  for (int i = 0; i < 50; ++i) RatingPrompt::appLaunched();
  RatingPrompt::appEnteredForeground(true);
  RatingPrompt::releaseSharedInstance();
  queues.reset();
  world.advance(1);
}

}  // namespace
}  // namespace endpin::fakes
