// When to ask for a rating and how: the bookkeeping, the ways to show it, the answers, the words.
#include <sys/resource.h>
#include <unistd.h>

#include <chrono>
#include <numeric>
#include <semaphore>

#include "adapters/posix/SystemNetwork.h"
#include "adapters/posix/SystemServices.h"
#include "tests/rating/FakeRatingPlatform.h"

namespace endpin::fakes {
namespace {

using World = FakeRatingPlatform;
using Book = UsageTracker;
constexpr double kDay = 86400;
constexpr double kAlmost = -1 / kDay;  // a second less
constexpr double kNever = 1e5;

struct RatingTest : testing::Test {
  void use(int ways) {
    world.use(ways);
    world.store.removeAll();
    world.store.unsynchronized = 0;
    messages.clear();
    RatingPrompt::setDelegate(delegate);
  }
  void put(std::initializer_list<std::pair<const char*, double>> values) {
    for (const auto& [key, value] : values) world.store.setDouble(key, value);
  }
  RatingPromptDelegate::Message note(const char* name) {
    return [this, name](RatingPrompt& sender) {
      EXPECT_EQ(&sender, &world.prompt());
      messages.emplace_back(name);
    };
  }
  // What the answer left in the store, for good.
  std::string noted() const {
    EXPECT_EQ(world.store.unsynchronized, 0);
    if (world.store.doubleForKey(Book::kReminderRequestDate) == world.now) return "reminder";
    if (world.prompt().userHasRatedCurrentVersion()) return "rated";
    return world.prompt().userHasDeclinedToRate() ? "declined" : "";
  }
  // All that is kept of the version in use, for good.
  Strings page() const {
    EXPECT_EQ(world.store.unsynchronized, 0);
    Strings values;
    for (const char* key :
         {Book::kCurrentVersion, Book::kFirstUseDate, Book::kUseCount, Book::kSignificantEventCount,
          Book::kRatedCurrentVersion, Book::kDeclinedToRate, Book::kReminderRequestDate}) {
      values.push_back(world.store.stringForKey(key).value_or("none"));
    }
    return values;
  }

  mutable World world;
  Strings messages;
  std::shared_ptr<RatingPromptDelegate> delegate =
      std::make_shared<RatingPromptDelegate>(RatingPromptDelegate{
          {}, note("shown"), note("declined"), note("rated"), note("reminder"), {}, {}});
};

TEST_F(RatingTest, ConditionsAndPropriety) {
  struct Row {
    const char* what;
    double days = 9, uses = 9;
    std::int64_t eventsWanted = -1;
    double events = 0, remindedDaysAgo = kNever;
    bool met = true;
    std::optional<std::uint32_t> flags = kReachabilityReachable;
    bool declined = false, visible = false, rated = false, appropriate = true;
  };
  const Row rows[] = {
      {.what = "just enough", .days = 4, .uses = 7},
      {.what = "too early", .days = 4 + kAlmost, .uses = 7, .met = false},
      {.what = "clock set back", .days = -1, .met = false},
      {.what = "too few uses", .uses = 6, .met = false},
      {.what = "too few events", .eventsWanted = 2, .events = 1, .met = false},
      {.what = "events enough", .eventsWanted = 2, .events = 2},
      {.what = "reminded", .remindedDaysAgo = 3 + kAlmost, .met = false},
      {.what = "to be reminded", .remindedDaysAgo = 3},
      {.what = "reminder to come", .remindedDaysAgo = -1, .met = false},
      {.what = "flags unreadable", .flags = {}, .appropriate = false},
      {.what = "no way", .flags = 0, .appropriate = false},
      {.what = "must dial", .flags = 6, .appropriate = false},
      {.what = "dials by itself", .flags = 7},
      {.what = "declined", .declined = true, .appropriate = false},
      {.what = "visible", .visible = true, .appropriate = false},
      {.what = "rated", .rated = true, .appropriate = false},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.what);
    use(World::kModern);
    RatingPrompt::setDaysUntilPrompt(4);
    RatingPrompt::setUsesUntilPrompt(7);
    RatingPrompt::setTimeBeforeReminding(3);
    RatingPrompt::setSignificantEventsUntilPrompt(row.eventsWanted);
    if (row.visible) RatingPrompt::forceShowPrompt(true);
    world.alertsMade = world.probes = 0;
    world.log.lines.clear();
    world.flags = row.flags;
    put({{Book::kFirstUseDate, world.now - row.days * kDay},
         {Book::kUseCount, row.uses - 1},
         {Book::kSignificantEventCount, row.events},
         {Book::kRatedCurrentVersion, row.rated},
         {Book::kDeclinedToRate, row.declined}});
    if (row.remindedDaysAgo < kNever) {
      put({{Book::kReminderRequestDate, world.now - row.remindedDaysAgo * kDay}});
    }
    world.prompt().incrementAndRate(true);
    EXPECT_EQ(world.probes, row.met && row.flags ? 1 : 0);
    EXPECT_EQ(world.log.lines.size(), row.met && !row.flags ? 1U : 0U);
    EXPECT_EQ(world.prompt().ratingConditionsHaveBeenMet(), row.met);
    EXPECT_EQ(world.prompt().ratingAlertIsAppropriate(), row.appropriate);
    EXPECT_EQ(world.alertsMade, 0);  // until the main thread is free
    world.advance(0);
    EXPECT_EQ(world.alertsMade, row.met && row.appropriate ? 1 : 0);
  }
  world.probeState = Probes::TaskState::Suspended;
  EXPECT_FALSE(world.prompt().connectedToNetwork());
}

TEST_F(RatingTest, ANewVersionStartsANewPage) {
  use(World::kModern);
  RatingPrompt::setDebug(true);
  world.prompt().incrementUseCount();
  world.now = 1.7e9 + kDay;
  world.prompt().incrementUseCount();
  world.prompt().incrementSignificantEventCount();
  EXPECT_EQ(page(), (Strings{"1.0", "1700000000", "2", "1", "none", "none", "none"}));
  const std::string tracking = "RATINGPROMPT Tracking version: 1.0";
  EXPECT_EQ(world.log.lines,
            (Strings{tracking, "RATINGPROMPT Use count: 1", tracking, "RATINGPROMPT Use count: 2",
                     tracking, "RATINGPROMPT Significant event count: 1"}));
  for (const int answer : {0, 1, 2}) world.prompt().alertViewDidDismissWithButtonIndex(answer);
  EXPECT_EQ(page(), (Strings{"1.0", "1700000000", "2", "1", "1", "1", "1700086400"}));
  world.bundle.info["CFBundleVersion"] = "2.0";
  world.prompt().incrementUseCount();
  EXPECT_EQ(page(), (Strings{"2.0", "1700086400", "1", "0", "0", "0", "0"}));
  world.bundle.info["CFBundleVersion"] = "3.0";
  world.prompt().incrementSignificantEventCount();
  EXPECT_EQ(page(), (Strings{"3.0", "0", "0", "1", "0", "0", "0"}));
  world.prompt().incrementUseCount();
  EXPECT_EQ(page(), (Strings{"3.0", "1700086400", "1", "1", "0", "0", "0"}));
}

// The first launch clears the store while the launch is counted: whatever is left is good to go on.
TEST_F(RatingTest, StoreClearedInTheMidstOfCounting) {
  for (int writes = 1; writes <= 7; ++writes) {
    use(World::kModern);
    world.store.setString(Book::kCurrentVersion, "0.9");
    world.store.clearAfterWrites = writes;
    world.prompt().incrementUseCount();
    world.prompt().incrementUseCount();
    const Strings now = page();
    EXPECT_EQ(Strings(now.begin(), now.begin() + 3),
              (Strings{"1.0", "1700000000", writes < 3 ? "2" : "1"}))
        << writes;
  }
}

TEST_F(RatingTest, LaunchAndForegroundCountBesideTheMainThread) {
  use(World::kModern);
  put({{Book::kFirstUseDate, 1}, {Book::kUseCount, 20}});
  RatingPrompt::appLaunched(false);
  RatingPrompt::appEnteredForeground(false);
  RatingPrompt::userDidSignificantEvent(false);
  EXPECT_EQ(world.work.size(), 3U);
  EXPECT_EQ(world.store.integerForKey(Book::kUseCount), 20);
  world.advance(0);
  EXPECT_EQ(world.store.integerForKey(Book::kUseCount), 22);
  EXPECT_EQ(world.store.integerForKey(Book::kSignificantEventCount), 1);
  EXPECT_EQ(world.alertsMade, 0);
  RatingPrompt::setDebug(true);
  RatingPrompt::appLaunched(false);  // in debug mode a launch asks and does not count
  world.advance(0);
  EXPECT_EQ(world.alertsMade, 1);
  EXPECT_EQ(world.store.integerForKey(Book::kUseCount), 22);

  // What is still queued when the prompt ends does nothing.
  world.resign();
  world.prompt().incrementAndRate(true);
  RatingPrompt::appLaunched();
  RatingPrompt::releaseSharedInstance();
  EXPECT_FALSE(world.resign || RatingPrompt::settings().debug);
  world.advance(0);
  RatingPrompt::tryToShowPrompt();
  EXPECT_EQ(world.alertsMade, 1);
  EXPECT_EQ(world.store.integerForKey(Book::kUseCount), 23);
}

TEST_F(RatingTest, TriesGrowWithTheRuns) {
  const std::pair<double, int> rows[] = {{2, 0}, {3, 1}, {4, 1}, {5, 2}, {6, 2},
                                         {7, 3}, {8, 3}, {9, 4}, {99, 4}};
  for (const auto& [runs, tries] : rows) {
    use(World::kReview);
    put({{"numberOfRuns", runs}});
    world.probes = world.reviews = 0;
    std::int64_t runCount = -1;
    promptToReview(world.store, runCount);
    EXPECT_EQ(static_cast<double>(runCount), runs);
    EXPECT_EQ(world.probes, tries);  // one for each try, though the first one is the last to ask
    EXPECT_EQ(world.reviews, tries > 0 ? 1 : 0);
  }
}

TEST_F(RatingTest, ButtonsInOrderAndWhatTheyDo) {
  const struct {
    int way;
    const char* buttons;  // in brackets; the cancel button in parentheses
    Strings answers;
  } rows[] = {
      {World::kModern,
       "[Rate Endpin][Remind me later](No, Thanks)",
       {"rated", "reminder", "declined"}},
      {World::kModern, "[Rate Endpin](No, Thanks)", {"rated", "declined"}},
      {World::kLegacy,
       "(No, Thanks)[Rate Endpin][Remind me later]",
       {"declined", "rated", "reminder"}},
      {World::kLegacy, "(No, Thanks)[Rate Endpin]", {"declined", "rated"}},
  };
  for (const auto& row : rows) {
    for (std::size_t pressed = 0; pressed < row.answers.size(); ++pressed) {
      SCOPED_TRACE(row.answers[pressed]);
      use(row.way);
      RatingPrompt::forceShowPrompt(row.answers.size() == 3);
      EXPECT_TRUE(world.prompt().isRatingAlertVisible());
      EXPECT_EQ(world.alert->buttons, row.buttons);
      world.alert->press(pressed);
      EXPECT_EQ(noted(), row.answers[pressed]);
      EXPECT_EQ(messages, (Strings{"shown", row.answers[pressed]}));
      EXPECT_EQ(world.prompt().ratingAlert().index(), 0U);
      // Only the other two answers are final for a try.
      EXPECT_EQ(world.prompt().ratingAlertIsAppropriate(), noted() == "reminder");
    }
  }
}

TEST_F(RatingTest, ReviewRequestFirstDelegateMayForbidDeclinedMayBeForced) {
  use(World::kReview | World::kModern | World::kLegacy | World::kSheet);
  RatingPrompt::tryToShowPrompt();
  RatingPrompt::tryToShowPrompt();
  EXPECT_EQ(world.reviews, 1);
  EXPECT_EQ(noted(), "rated");
  EXPECT_EQ(messages, Strings{"shown"});
  EXPECT_TRUE(!world.alert && world.urls.empty());

  use(World::kModern | World::kLegacy);
  delegate->ratingPromptShouldDisplayAlert = [](RatingPrompt&) { return false; };
  RatingPrompt::forceShowPrompt(true);
  delegate.reset();  // a weak reference: the forbidding goes with it
  put({{Book::kDeclinedToRate, 1}});
  RatingPrompt::showPrompt();
  EXPECT_FALSE(world.alert);
  RatingPrompt::forceShowPrompt(true);
  EXPECT_FALSE(world.alert->didDismiss) << "a modern one";
  EXPECT_TRUE(messages.empty());
}

TEST_F(RatingTest, ResigningHidesWithoutAnAnswer) {
  const std::string resigning = "RATINGPROMPT appWillResignActive";
  for (const int way : {World::kModern, World::kLegacy}) {
    use(way);
    world.log.lines.clear();
    RatingPrompt::setDebug(true);
    world.resign();
    RatingPrompt::tryToShowPrompt();
    world.resign();
    EXPECT_FALSE(world.prompt().isRatingAlertVisible() || world.alert->animated);
    EXPECT_EQ(noted(), "");
    EXPECT_EQ(messages, Strings{"shown"});
    EXPECT_EQ(world.log.lines, (Strings{resigning, resigning, "RATINGPROMPT Hiding Alert"}));
  }
}

TEST_F(RatingTest, StorePageBySystemVersion) {
  const std::string reviews = "/WebObjects/MZStore.woa/wa/viewContentsUserReviews?";
  const std::string pages[] = {kStoreReviewHost + reviews + "type=Purple+Software&id=4711",
                               std::string(kStoreHost) + "/app/id4711",
                               kStoreHost + reviews +
                                   "id=4711&onlyLatestVersion=true&pageNumber=0&sortOrdering=1"
                                   "&type=Purple+Software"};
  const std::pair<const char*, int> rows[] = {{"", 0},    {"6.9.9", 0}, {"7.0", 1}, {"7.9", 1},
                                              {"8.0", 2}, {"12", 2},    {" +8", 2}, {"1e99", 2}};
  for (const auto& [version, page] : rows) {
    world.device.version = version;
    use(World::kModern | World::kSheet);
    EXPECT_EQ(world.prompt().openInAppStore, page > 0) << version;  // unless it is set
    RatingPrompt::setOpenInAppStore(true);
    RatingPrompt::rateApp();
    EXPECT_EQ(world.urls.back(), "itms-apps://" + pages[page]) << version;
  }
  EXPECT_FALSE(world.sheet);
}

TEST_F(RatingTest, StoreSheetOpensAndCloses) {
  for (const bool animated : {true, false}) {
    use(World::kModern | World::kSheet);
    const auto noteModal = [&](const char* name) {
      return [=, this](RatingPromptSender sender, bool flag) {
        EXPECT_EQ(flag, animated);
        EXPECT_EQ(noted(), "rated");
        messages.push_back(std::string(name) + (sender.index() == 0 ? " instance" : " class"));
      };
    };
    delegate->ratingPromptWillPresentModalView = noteModal("opens");
    delegate->ratingPromptDidDismissModalView = noteModal("closed");
    RatingPrompt::setOpenInAppStore(false);
    RatingPrompt::setUsesAnimation(animated);
    RatingPrompt::closeModal();  // nothing is open
    RatingPrompt::rateApp();
    EXPECT_EQ(world.sheet->product, 4711);
    EXPECT_TRUE(world.sheet->onScreen && RatingPrompt::settings().modalOpen);
    EXPECT_EQ(world.sheet->animated, animated);
    world.sheet->finished();
    EXPECT_FALSE(world.sheet->onScreen || RatingPrompt::settings().modalOpen);
    RatingPrompt::closeModal();
    EXPECT_EQ(messages, (Strings{"opens instance", "closed class"}));
  }
  EXPECT_TRUE(world.urls.empty());
}

TEST_F(RatingTest, PresentsFromKeyWindowOrFirstNormalOneDepthFirstTopOfTheChain) {
  const auto over = std::make_shared<Fake<ScreenController>>();
  const auto top = std::make_shared<Fake<ScreenController>>();
  Fake<ScreenController> first, second;
  FakeWindow bare, leaf{{}, &first}, branch{{&bare, &leaf}}, sibling{{}, &second};
  FakeWindow alertLevel{{&sibling}, nullptr, 2000}, normal{{&bare, &branch, &sibling}};
  const struct {
    const char* what;
    FakeWindow* key;
    std::vector<ScreenWindow*> windows;
    ScreenController* found;
  } rows[] = {
      {"depth first", &normal, {}, &first},
      {"key window above the rest", &alertLevel, {&alertLevel, &normal, &sibling}, &first},
      {"no normal window", &alertLevel, {&alertLevel}, nullptr},
      {"no key window", nullptr, {&normal}, &first},
      {"nothing in the window", &bare, {&normal}, nullptr},
      {"no window", nullptr, {}, nullptr},
  };
  for (const auto& row : rows) {
    world.key = row.key;
    world.allWindows = row.windows;
    EXPECT_EQ(getRootViewController(world), row.found) << row.what;
  }
  use(World::kModern);
  RatingPrompt::forceShowPrompt(true);
  EXPECT_FALSE(world.prompt().isRatingAlertVisible()) << "without a window";
  first.presentViewController(over, false, {});
  over->presentViewController(top, false, {});
  EXPECT_EQ(iterateSubViewsForViewController(normal), top.get());
}

TEST_F(RatingTest, WordsAndWhereTheyComeFrom) {
  use(World::kModern);
  const RatingPrompt& prompt = world.prompt();
  EXPECT_EQ(prompt.alertMessage(),
            "If you enjoy using Endpin, would you mind taking a moment to rate it? It won't take "
            "more than a minute. Thanks for your support!");
  world.bundle.info["CFBundleDisplayName"] = "Shown";
  EXPECT_EQ(prompt.alertTitle(), "Rate Shown");
  world.bundle.localized["CFBundleDisplayName"] = "Gezeigt %@";
  world.bundle.texts["Rate %@"] = "100 %% %@ bewerten";
  EXPECT_EQ(prompt.alertTitle(), "100 % Gezeigt %@ bewerten");

  FakeBundle own;
  own.texts["Remind me later"] = "Später";
  world.ownBundle = &own;
  EXPECT_EQ(prompt.alertRateLaterTitle(), "Später");
  EXPECT_EQ(prompt.alertTitle(), "Rate Gezeigt %@");  // its texts, but the application's name
  RatingPrompt::setAlwaysUseMainBundle(true);
  EXPECT_EQ(prompt.alertRateLaterTitle(), "Remind me later");

  RatingPrompt::setCustomAlertTitle("%@!");
  RatingPrompt::setCustomAlertMessage("Message");
  RatingPrompt::setCustomAlertRateButtonTitle("Same");
  RatingPrompt::setCustomAlertRateLaterButtonTitle("Later");
  RatingPrompt::setCustomAlertCancelButtonTitle("Same");
  RatingPrompt::forceShowPrompt(true);
  EXPECT_EQ(world.alert->text, "%@!|Message");
  RatingPrompt::setCustomAlertRateLaterButtonTitle({});
  world.alert->press(1);  // a title that is in force no more is none of the buttons
  EXPECT_EQ(noted(), "");
  world.alert->press(0);  // of two alike, the one that does less
  EXPECT_EQ(noted(), "declined");
}

// A process that has no descriptor left cannot ask for the way.
TEST_F(RatingTest, FlagsThatCannotBeReadAreLogged) {
  SystemNetwork network(true, "");
  world.reachability = &network;
  use(World::kModern);
  static_cast<void>(world.prompt().connectedToNetwork());  // a checked build opens files at first
  rlimit usual{};
  getrlimit(RLIMIT_NOFILE, &usual);
  const rlimit none{0, usual.rlim_max};
  setrlimit(RLIMIT_NOFILE, &none);
  world.log.lines.clear();
  EXPECT_FALSE(world.prompt().connectedToNetwork());
  setrlimit(RLIMIT_NOFILE, &usual);
  EXPECT_EQ(world.log.lines, Strings{"Error. Could not recover network reachability flags"});
  EXPECT_EQ(world.probes, 1) << "of the call before";
}

TEST(ThreadQueues, KeepTheOrderStepBackAndEndWithWhatRuns) {
  std::optional<ThreadQueues> queues(std::in_place);
  std::binary_semaphore measured{0}, running{0};
  int niceness = 0;
  queues->dispatchAsync(kWorkPriorityBackground, [&] {
    niceness = getpriority(PRIO_PROCESS, static_cast<id_t>(gettid()));
    measured.release();
  });
  std::vector<int> order, counted(101);
  std::iota(counted.begin(), counted.end(), 0);
  auto queue = queues->newOperationQueue();
  for (int i = 0; i < 100; ++i) queue->addOperation([&order, i] { order.push_back(i); });
  queue->addOperation([&] {
    running.release();
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    order.push_back(100);
  });
  queue->addOperation([&] { order.push_back(101); });
  measured.acquire();
  running.acquire();
  queue.reset();
  EXPECT_EQ(niceness, std::min(getpriority(PRIO_PROCESS, 0) + 10, 19));
  EXPECT_EQ(order, counted);
}

// Everything at once on the threads of a desktop; the thread sanitizer looks on.
TEST_F(RatingTest, LaunchForegroundAndPromptsAtOnce) {
  constexpr std::int64_t kRounds = 300;
  std::optional<ThreadQueues> queues(std::in_place);
  world.queues = &*queues;
  use(World::kModern);
  put({{Book::kFirstUseDate, 1}});
  const RatingPrompt* seen[4] = {};
  {
    std::vector<std::jthread> threads;
    for (auto& one : seen) {
      threads.emplace_back([&one] {
        one = RatingPrompt::sharedInstance().get();
        for (int i = 0; i < 2000; ++i) RatingPrompt::sharedInstance()->incrementUseCount();
      });
    }
  }
  for (const auto* one : seen) EXPECT_EQ(one, &world.prompt());
  const auto counted = [&] { return world.store.integerForKey(Book::kUseCount); };
  ASSERT_EQ(counted(), 4 * 2000);  // none is lost, whoever counts

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
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(100);
  constexpr std::int64_t kAll = 4 * 2000 + 2 * kRounds;
  while (counted() < kAll && std::chrono::steady_clock::now() < deadline) world.advance(0);
  EXPECT_EQ(counted(), kAll);
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
