// When to ask for a rating and how: the bookkeeping, the ways to show it, the answers, the words.
#include <sys/resource.h>
#include <unistd.h>

#include <future>

#include "adapters/posix/SystemNetwork.h"
#include "adapters/posix/SystemServices.h"
#include "tests/rating/FakeRatingPlatform.h"
#include "tests/support/Soon.h"

namespace endpin::fakes {
namespace {

using World = FakeRatingPlatform;
using Book = UsageTracker;
constexpr double kDay = 86400;
constexpr double kAlmost = -1 / kDay;  // a second less
constexpr double kNever = 1e5;

struct RatingTest : ::testing::Test {
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

  World world;
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
    bool visible = false, appropriate = true;
  };
  const Row rows[] = {
      {.what = "just enough", .days = 4, .uses = 7},
      {.what = "too early", .days = 4 + kAlmost, .uses = 7, .met = false},
      {.what = "too few uses", .uses = 6, .met = false},
      {.what = "too few events", .eventsWanted = 2, .events = 1, .met = false},
      {.what = "events enough", .eventsWanted = 2, .events = 2},
      {.what = "reminded", .remindedDaysAgo = 3 + kAlmost, .met = false},
      {.what = "to be reminded", .remindedDaysAgo = 3},
      {.what = "flags unreadable", .flags = {}, .appropriate = false},
      {.what = "must dial", .flags = 6, .appropriate = false},
      {.what = "dials by itself", .flags = 7},
      {.what = "visible", .visible = true, .appropriate = false},
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
         {Book::kSignificantEventCount, row.events}});
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
  EXPECT_EQ(world.log.count("RATINGPROMPT Tracking version: 1.0"), 3);
  EXPECT_EQ(world.log.count("RATINGPROMPT Use count: 2"), 1);
  EXPECT_EQ(world.log.count("RATINGPROMPT Significant event count: 1"), 1);
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

TEST_F(RatingTest, LaunchAndForegroundCountBesideTheMainThread) {
  use(World::kModern);
  put({{Book::kFirstUseDate, 1}, {Book::kUseCount, 20}});
  RatingPrompt::appLaunched(false);
  RatingPrompt::appEnteredForeground(false);
  RatingPrompt::userDidSignificantEvent(false);
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

TEST_F(RatingTest, TriesGrowWithTheRunsAndAskForAReviewWhereTheyCan) {
  const std::pair<double, int> rows[] = {{2, 0}, {3, 1}, {4, 1}, {5, 2}, {6, 2},
                                         {7, 3}, {8, 3}, {9, 4}, {99, 4}};
  for (const auto& [runs, tries] : rows) {
    use(World::kReview | World::kModern | World::kLegacy | World::kSheet);
    put({{"numberOfRuns", runs}});
    world.probes = world.reviews = 0;
    std::int64_t runCount = -1;
    promptToReview(world.store, runCount);
    EXPECT_EQ(static_cast<double>(runCount), runs);
    EXPECT_EQ(world.probes, tries);  // one for each try, though the first one is the last to ask
    EXPECT_EQ(world.reviews, tries > 0 ? 1 : 0);
    EXPECT_EQ(world.prompt().userHasRatedCurrentVersion(), tries > 0);
    EXPECT_EQ(messages.size(), tries > 0 ? 1U : 0U);
    EXPECT_TRUE(!world.alert && world.urls.empty());
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
      EXPECT_EQ(world.noted(), row.answers[pressed]);
      EXPECT_EQ(messages, (Strings{"shown", row.answers[pressed]}));
      EXPECT_EQ(world.prompt().ratingAlert().index(), 0U);
      // Only the other two answers are final for a try.
      EXPECT_EQ(world.prompt().ratingAlertIsAppropriate(), world.noted() == "reminder");
    }
  }
}

TEST_F(RatingTest, DelegateMayForbidDeclinedMayBeForced) {
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
  for (const int way : {World::kModern, World::kLegacy}) {
    use(way);
    world.resign();
    RatingPrompt::tryToShowPrompt();
    world.resign();
    EXPECT_FALSE(world.prompt().isRatingAlertVisible() || world.alert->animated);
    EXPECT_EQ(world.noted(), "");
    EXPECT_EQ(messages, Strings{"shown"});
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
  use(World::kModern | World::kSheet);
  const auto noteModal = [&](const char* name) {
    return [=, this](RatingPromptSender sender, bool animated) {
      EXPECT_FALSE(animated);
      EXPECT_EQ(world.noted(), "rated");
      messages.push_back(std::string(name) + (sender.index() == 0 ? " instance" : " class"));
    };
  };
  delegate->ratingPromptWillPresentModalView = noteModal("opens");
  delegate->ratingPromptDidDismissModalView = noteModal("closed");
  RatingPrompt::setOpenInAppStore(false);
  RatingPrompt::setUsesAnimation(false);
  RatingPrompt::closeModal();  // nothing is open
  RatingPrompt::rateApp();
  EXPECT_EQ(world.sheet->product, 4711);
  EXPECT_TRUE(world.sheet->onScreen && RatingPrompt::settings().modalOpen);
  world.sheet->finished();
  EXPECT_FALSE(world.sheet->onScreen || RatingPrompt::settings().modalOpen);
  RatingPrompt::closeModal();
  EXPECT_EQ(messages, (Strings{"opens instance", "closed class"}));
  EXPECT_TRUE(world.urls.empty());
}

TEST_F(RatingTest, PresentsFromKeyWindowOrFirstNormalOneDepthFirstTopOfTheChain) {
  const auto over = std::make_shared<Fake<ScreenController>>();
  const auto top = std::make_shared<Fake<ScreenController>>();
  Fake<ScreenController> first, second;
  FakeWindow bare, leaf{{}, &first}, branch{{&bare, &leaf}}, sibling{{}, &second};
  FakeWindow alertLevel{{&sibling}, nullptr, 2000}, normal{{&bare, &branch, &sibling}};
  const struct {
    FakeWindow* key;
    std::vector<ScreenWindow*> windows;
    ScreenController* found;
  } rows[] = {
      {&normal, {}, &first},
      {&alertLevel, {&alertLevel, &normal, &sibling}, &first},
      {&alertLevel, {&alertLevel}, nullptr},
      {nullptr, {&normal}, &first},
      {&bare, {&normal}, nullptr},
      {nullptr, {}, nullptr},
  };
  for (const auto& row : rows) {
    world.key = row.key;
    world.allWindows = row.windows;
    EXPECT_EQ(getRootViewController(world), row.found) << &row - rows;
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
  EXPECT_TRUE(prompt.alertMessage().starts_with("If you enjoy using Endpin, would you mind"));
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
  EXPECT_EQ(world.noted(), "");
  world.alert->press(0);  // of two alike, the one that does less
  EXPECT_EQ(world.noted(), "declined");
}

// A process that has no descriptor left cannot ask for the way.
TEST(SystemNetwork, FlagsThatCannotBeReadAreNone) {
  SystemNetwork network(true, "");
  EXPECT_TRUE(network.flagsForAddress({}));  // a checked build opens files at first
  rlimit usual{};
  getrlimit(RLIMIT_NOFILE, &usual);
  const rlimit none{0, usual.rlim_max};
  setrlimit(RLIMIT_NOFILE, &none);
  const auto flags = network.flagsForAddress({});
  setrlimit(RLIMIT_NOFILE, &usual);
  EXPECT_FALSE(flags);
}

TEST(ThreadQueues, KeepTheOrderStepBackAndEndWithWhatRuns) {
  ThreadQueues queues;
  std::promise<int> niceness;
  queues.dispatchAsync(kWorkPriorityBackground, [&] {
    niceness.set_value(getpriority(PRIO_PROCESS, static_cast<id_t>(gettid())));
  });
  EXPECT_EQ(niceness.get_future().get(), std::min(getpriority(PRIO_PROCESS, 0) + 10, 19));
  std::promise<void> running;
  std::string order;
  auto queue = queues.newOperationQueue();
  for (const char letter : {'a', 'b', 'c'}) {
    queue->addOperation([&order, letter] { order += letter; });
  }
  queue->addOperation([&] {
    running.set_value();
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    order += 'd';
  });
  queue->addOperation([&] { order += "never"; });
  running.get_future().wait();
  queue.reset();
  EXPECT_EQ(order, "abcd");
}

// Everything at once on the threads of a desktop; the thread sanitizer looks on.
TEST_F(RatingTest, LaunchForegroundAndPromptsAtOnce) {
  constexpr std::int64_t kRounds = 300;
  std::optional<ThreadQueues> queues(std::in_place);
  world.queues = &*queues;
  use(World::kModern);
  put({{Book::kFirstUseDate, 1}});
  std::vector<std::jthread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([] {
      for (int uses = 0; uses < 2000; ++uses) RatingPrompt::sharedInstance()->incrementUseCount();
    });
  }
  threads.clear();
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
  EXPECT_TRUE(testing::soon(std::chrono::seconds(100), [&] {
    world.advance(0);
    return counted() == 4 * 2000 + 2 * kRounds;
  }));
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
