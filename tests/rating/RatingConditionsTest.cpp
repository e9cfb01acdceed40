// When to ask: the bookkeeping, the state table, and who asks on which queue.
#include "rating/PromptToReview.h"
#include "tests/rating/FakeRatingPlatform.h"

namespace endpin::fakes {
namespace {

using Book = UsageBook;
constexpr double kDay = 86400;
constexpr double kAlmost = -1 / kDay;  // a second less
constexpr double kNever = 1e5;

struct RatingConditions : testing::Test {
  FakeRatingPlatform world;
};

TEST_F(RatingConditions, StateTable) {
  const struct {
    const char* what;
    double days, uses, eventsWanted, events, remindedDaysAgo;
    bool met;
    std::optional<std::uint32_t> flags;
    bool declined, visible, rated, appropriate;
  } rows[] = {
      {"just enough", 4, 7, -1, 0, kNever, true, 2, false, false, false, true},
      {"too early", 4 + kAlmost, 7, -1, 0, kNever, false, 2, false, false, false, true},
      {"clock set back", -1, 7, -1, 0, kNever, false, 2, false, false, false, true},
      {"too few uses", 9, 6, -1, 0, kNever, false, 2, false, false, false, true},
      {"too few events", 9, 9, 2, 1, kNever, false, 2, false, false, false, true},
      {"events enough", 9, 9, 2, 2, kNever, true, 2, false, false, false, true},
      {"reminded", 9, 9, -1, 0, 3 + kAlmost, false, 2, false, false, false, true},
      {"to be reminded", 9, 9, -1, 0, 3, true, 2, false, false, false, true},
      {"reminder to come", 9, 9, -1, 0, -1, false, 2, false, false, false, true},
      {"flags unreadable", 9, 9, -1, 0, kNever, true, {}, false, false, false, false},
      {"no way", 9, 9, -1, 0, kNever, true, 0, false, false, false, false},
      {"must dial", 9, 9, -1, 0, kNever, true, 6, false, false, false, false},
      {"dials by itself", 9, 9, -1, 0, kNever, true, 7, false, false, false, true},
      {"declined", 9, 9, -1, 0, kNever, true, 2, true, false, false, false},
      {"visible", 9, 9, -1, 0, kNever, true, 2, false, true, false, false},
      {"rated", 9, 9, -1, 0, kNever, true, 2, false, false, true, false},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.what);
    world.use(FakeRatingPlatform::kModern);
    RatingPrompt::setSignificantEventsUntilPrompt(static_cast<std::int64_t>(row.eventsWanted));
    if (row.visible) RatingPrompt::forceShowPrompt(true);
    world.alertsMade = world.probes = 0;
    world.log.clear();
    world.flags = row.flags;
    const double reminded = world.now - row.remindedDaysAgo * kDay;
    world.store.values = {
        {Book::kCurrentVersion, "1.0"},
        {Book::kFirstUseDate, world.now - row.days * kDay},
        {Book::kUseCount, row.uses - 1},
        {Book::kSignificantEventCount, row.events},
        {Book::kRatedCurrentVersion, row.rated ? 1.0 : 0.0},
        {Book::kDeclinedToRate, row.declined ? 1.0 : 0.0},
        {Book::kReminderRequestDate, row.remindedDaysAgo < kNever ? reminded : 0}};
    world.prompt().incrementAndRate(true);
    EXPECT_EQ(world.probes, row.met && row.flags ? 1 : 0);
    EXPECT_EQ(world.log.size(), row.met && !row.flags ? 1U : 0U);
    EXPECT_EQ(world.prompt().ratingConditionsHaveBeenMet(), row.met);
    EXPECT_EQ(world.prompt().ratingAlertIsAppropriate(), row.appropriate);
    EXPECT_EQ(world.alertsMade, 0);  // until the main thread is free
    world.advance(0);
    EXPECT_EQ(world.alertsMade, row.met && row.appropriate ? 1 : 0);
  }
  world.probeState = Probes::TaskState::Suspended;
  EXPECT_FALSE(world.prompt().connectedToNetwork());
}

TEST_F(RatingConditions, ANewVersionStartsANewPage) {
  world.use(FakeRatingPlatform::kModern);
  RatingPrompt::setDebug(true);
  const double start = world.now;
  world.prompt().incrementUseCount();
  world.advance(kDay);
  world.prompt().incrementUseCount();
  world.prompt().incrementSignificantEventCount();
  EXPECT_EQ(world.store.durable, (Entries{{Book::kCurrentVersion, "1.0"},
                                          {Book::kFirstUseDate, start},
                                          {Book::kUseCount, 2.0},
                                          {Book::kSignificantEventCount, 1.0}}));
  const std::string tracking = "RATINGPROMPT Tracking version: 1.0";
  EXPECT_EQ(world.log, (std::vector<std::string>{tracking, "RATINGPROMPT Use count: 1", tracking,
                                                 "RATINGPROMPT Use count: 2", tracking,
                                                 "RATINGPROMPT Significant event count: 1"}));
  const auto page = [&](double firstUse, double uses, double events) {
    return Entries{{Book::kCurrentVersion, world.bundle.info["CFBundleVersion"]},
                   {Book::kFirstUseDate, firstUse},
                   {Book::kUseCount, uses},
                   {Book::kSignificantEventCount, events},
                   {Book::kRatedCurrentVersion, 0.0},
                   {Book::kDeclinedToRate, 0.0},
                   {Book::kReminderRequestDate, 0.0}};
  };
  world.prompt().alertViewDidDismissWithButtonIndex(0);
  world.prompt().alertViewDidDismissWithButtonIndex(1);
  world.prompt().alertViewDidDismissWithButtonIndex(2);
  world.bundle.info["CFBundleVersion"] = "2.0";
  world.prompt().incrementUseCount();
  EXPECT_EQ(world.store.durable, page(world.now, 1, 0));
  world.bundle.info["CFBundleVersion"] = "3.0";
  world.prompt().incrementSignificantEventCount();
  EXPECT_EQ(world.store.durable, page(0, 0, 1));
  world.prompt().incrementUseCount();
  EXPECT_EQ(world.store.durable, page(world.now, 1, 1));
}

// The first launch clears the store while the launch is counted: whatever is left is good to go on.
TEST_F(RatingConditions, StoreClearedInTheMidstOfCounting) {
  world.use(FakeRatingPlatform::kModern);
  for (int writes = 1; writes <= 7; ++writes) {
    world.store.values = {{Book::kCurrentVersion, "0.9"}};
    world.store.clearAfterWrites = writes;
    world.prompt().incrementUseCount();
    world.prompt().incrementUseCount();
    EXPECT_EQ(world.store.stringForKey(Book::kCurrentVersion), "1.0") << writes;
    EXPECT_EQ(world.store.doubleForKey(Book::kFirstUseDate), world.now) << writes;
    EXPECT_EQ(world.store.integerForKey(Book::kUseCount), writes < 3 ? 2 : 1) << writes;
  }
}

TEST_F(RatingConditions, LaunchAndForegroundCountBesideTheMainThread) {
  world.store.values = {{Book::kFirstUseDate, 1.0}, {Book::kUseCount, 7.0}};
  world.use(FakeRatingPlatform::kModern);
  RatingPrompt::appLaunched(false);
  RatingPrompt::appEnteredForeground(false);
  RatingPrompt::userDidSignificantEvent(false);
  EXPECT_EQ(world.work.size(), 3U);
  EXPECT_EQ(world.store.integerForKey(Book::kUseCount), 7);
  world.advance(0);
  EXPECT_EQ(world.store.integerForKey(Book::kUseCount), 9);
  EXPECT_EQ(world.store.integerForKey(Book::kSignificantEventCount), 1);
  EXPECT_EQ(world.alertsMade, 0);
  RatingPrompt::setDebug(true);
  RatingPrompt::appLaunched(false);  // in debug mode a launch asks and does not count
  world.advance(0);
  EXPECT_EQ(world.alertsMade, 1);
  EXPECT_EQ(world.store.integerForKey(Book::kUseCount), 9);

  // What is still queued when the prompt ends does nothing.
  world.resign();
  world.prompt().incrementAndRate(true);
  RatingPrompt::appLaunched();
  RatingPrompt::releaseSharedInstance();
  EXPECT_FALSE(world.resign);
  world.advance(0);
  RatingPrompt::tryToShowPrompt();
  EXPECT_EQ(world.alertsMade, 1);
}

TEST_F(RatingConditions, TriesGrowWithTheRuns) {
  const std::pair<double, int> rows[] = {{2, 0}, {3, 1}, {4, 1}, {5, 2}, {6, 2},
                                         {7, 3}, {8, 3}, {9, 4}, {99, 4}};
  for (const auto& [runs, tries] : rows) {
    world.use(FakeRatingPlatform::kReview);
    world.store.values = {{"numberOfRuns", runs}};
    world.probes = world.reviews = 0;
    std::int64_t runCount = -1;
    promptToReview(world.store, runCount);
    EXPECT_EQ(static_cast<double>(runCount), runs);
    EXPECT_EQ(world.probes, tries);  // one for each try, though the first one is the last to ask
    EXPECT_EQ(world.reviews, tries > 0 ? 1 : 0);
  }
}

}  // namespace
}  // namespace endpin::fakes
