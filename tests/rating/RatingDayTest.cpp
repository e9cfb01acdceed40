// A day in which the main screen asks ten times a second, two seconds after each tick.
#include <malloc.h>

#include <iostream>

#include "rating/PromptToReview.h"
#include "tests/rating/FakeRatingPlatform.h"

namespace endpin::fakes {
namespace {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr int kHours = 2;  // hours: too slow for more, and without mallinfo2
#else
constexpr int kHours = 24;
#endif
constexpr int kTicksPerHour = 36000;

TEST(RatingDay, HoldsNoMoreThanAfterTheFirstHour) {
  const struct {
    const char* what;
    int way;
    std::uint32_t flags;
    bool hasWindow;
    int hours;
    int alerts;
  } rows[] = {{"never answered", FakeRatingPlatform::kModern, 2, true, kHours, 1},
              {"offline", FakeRatingPlatform::kModern, 0, true, 2, 0},
              {"no window", FakeRatingPlatform::kModern, 2, false, 2, 4 * kTicksPerHour * 2},
              {"review request", FakeRatingPlatform::kReview, 2, true, 2, 0}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.what);
    FakeRatingPlatform world;
    if (!row.hasWindow) world.key = nullptr;
    world.use(row.way);
    world.flags = row.flags;
    world.store.values = {{"numberOfRuns", 9.0}};
    std::int64_t runCount = 0;
    std::size_t mostPending = 0;
    const auto passHours = [&](int hours) {
      for (int tick = 0; tick < hours * kTicksPerHour; ++tick) {
        world.performAfterDelay(2.0, [&] { promptToReview(world.store, runCount); });
        mostPending = std::max(mostPending, world.main.size());
        world.advance(0.1);
      }
    };
    passHours(1);
    const auto held = mallinfo2().uordblks;  // bytes
    passHours(row.hours - 1);
    const auto holds = mallinfo2().uordblks;
    EXPECT_LE(holds, held + 1024);
    EXPECT_LE(mostPending, 21U);  // two seconds of ticks
    EXPECT_NEAR(world.probes, 4 * kTicksPerHour * row.hours, 4 * 21);
    EXPECT_NEAR(world.alertsMade, row.alerts, 4 * 21);
    std::cout << row.what << ": pending at most " << mostPending << ", bytes held " << held
              << " then " << holds << '\n';
  }
}

}  // namespace
}  // namespace endpin::fakes
