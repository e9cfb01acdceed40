// How to ask: the ways to show it, the answers, the words, and where to show it.
#include "rating/PresenterSearch.h"
#include "rating/StoreConfiguration.h"
#include "tests/rating/FakeRatingPlatform.h"

namespace endpin::fakes {
namespace {

using World = FakeRatingPlatform;
using Strings = std::vector<std::string>;

struct RatingAlert : testing::Test {
  void use(int ways) {
    world.use(ways);
    world.store.values.clear();
    messages.clear();
    RatingPrompt::setDelegate(delegate);
  }
  RatingPromptDelegate::Message note(const char* name) {
    return [this, name](RatingPrompt& sender) {
      EXPECT_EQ(&sender, &world.prompt());
      messages.emplace_back(name);
    };
  }
  // What the answer left in the store, for good.
  std::string noted() const {
    EXPECT_EQ(world.store.durable, world.store.values);
    if (world.store.doubleForKey(UsageBook::kReminderRequestDate) == world.now) return "reminder";
    if (world.store.boolForKey(UsageBook::kRatedCurrentVersion)) return "rated";
    return world.store.boolForKey(UsageBook::kDeclinedToRate) ? "declined" : "";
  }

  World world;
  Strings messages;
  std::shared_ptr<RatingPromptDelegate> delegate =
      std::make_shared<RatingPromptDelegate>(RatingPromptDelegate{
          {}, note("shown"), note("declined"), note("rated"), note("reminder"), {}, {}});
};

TEST_F(RatingAlert, ButtonsInOrderAndWhatTheyDo) {
  const char* const rate = "Rate Endpin";
  const char* const later = "Remind me later";
  const char* const no = "No, Thanks";
  const struct {
    int way;
    Strings buttons, answers;
    std::vector<int> styles;  // 1: the cancel button
  } rows[] = {
      {World::kModern, {rate, later, no}, {"rated", "reminder", "declined"}, {0, 0, 1}},
      {World::kModern, {rate, no}, {"rated", "declined"}, {0, 1}},
      {World::kLegacy, {no, rate, later}, {"declined", "rated", "reminder"}, {}},
      {World::kLegacy, {no, rate}, {"declined", "rated"}, {}},
  };
  for (const auto& row : rows) {
    for (std::size_t pressed = 0; pressed < row.buttons.size(); ++pressed) {
      SCOPED_TRACE(row.answers[pressed]);
      use(row.way);
      RatingPrompt::forceShowPrompt(row.buttons.size() == 3);
      EXPECT_TRUE(world.prompt().isRatingAlertVisible());
      Buttons& alert =
          row.way == World::kModern ? static_cast<Buttons&>(*world.alert) : *world.legacy;
      EXPECT_EQ(alert.buttons, row.buttons);
      EXPECT_EQ(alert.styles, row.styles);
      alert.press(pressed);
      EXPECT_EQ(noted(), row.answers[pressed]);
      EXPECT_EQ(messages, (Strings{"shown", row.answers[pressed]}));
      EXPECT_EQ(world.prompt().ratingAlert().index(), 0U);
      // Only the other two answers are final for a try.
      EXPECT_EQ(world.prompt().ratingAlertIsAppropriate(), noted() == "reminder");
    }
  }
}

TEST_F(RatingAlert, ReviewRequestFirstDelegateMayForbidDeclinedMayBeForced) {
  use(World::kReview | World::kModern | World::kLegacy | World::kSheet);
  RatingPrompt::tryToShowPrompt();
  RatingPrompt::tryToShowPrompt();
  EXPECT_EQ(world.reviews, 1);
  EXPECT_EQ(noted(), "rated");
  EXPECT_EQ(messages, Strings{"shown"});
  EXPECT_TRUE(!world.alert && !world.legacy && world.urls.empty());

  use(World::kModern);
  delegate->ratingPromptShouldDisplayAlert = [](RatingPrompt&) { return false; };
  RatingPrompt::forceShowPrompt(true);
  delegate.reset();  // a weak reference: the forbidding goes with it
  world.store.setBool(UsageBook::kDeclinedToRate, true);
  RatingPrompt::showPrompt();
  EXPECT_FALSE(world.alert);
  RatingPrompt::forceShowPrompt(true);
  EXPECT_TRUE(world.alert);
  EXPECT_TRUE(messages.empty());
}

TEST_F(RatingAlert, ResigningHidesWithoutAnAnswer) {
  const std::string resigning = "RATINGPROMPT appWillResignActive";
  for (const int way : {World::kModern, World::kLegacy}) {
    use(way);
    world.log.clear();
    RatingPrompt::setDebug(true);
    world.resign();
    RatingPrompt::tryToShowPrompt();
    world.resign();
    EXPECT_FALSE(world.prompt().isRatingAlertVisible());
    EXPECT_TRUE(world.store.values.empty());
    EXPECT_EQ(messages, Strings{"shown"});
    EXPECT_EQ(world.log, (Strings{resigning, resigning, "RATINGPROMPT Hiding Alert"}));
  }
  EXPECT_FALSE(world.alert->animated);
  EXPECT_EQ(world.legacy->dismissedWith, -1);
}

TEST_F(RatingAlert, StorePageBySystemVersion) {
  const std::string reviews = "/WebObjects/MZStore.woa/wa/viewContentsUserReviews?";
  const std::string pages[] = {kStoreReviewHost + reviews + "type=Purple+Software&id=4711",
                               std::string(kStoreHost) + "/app/id4711",
                               kStoreHost + reviews +
                                   "id=4711&onlyLatestVersion=true&pageNumber=0&sortOrdering=1"
                                   "&type=Purple+Software"};
  const std::pair<const char*, int> rows[] = {{"", 0},    {"6.9.9", 0}, {"7.0", 1},
                                              {"7.9", 1}, {"8.0", 2},   {"12", 2}};
  for (const auto& [version, page] : rows) {
    world.version = version;
    world.name(World::kModern | World::kSheet);
    EXPECT_EQ(world.prompt().openInAppStore, page > 0) << version;  // unless it is set
    use(World::kModern | World::kSheet);
    RatingPrompt::rateApp();
    EXPECT_EQ(world.urls.back(), "itms-apps://" + pages[page]) << version;
  }
  EXPECT_FALSE(world.sheet);
}

TEST_F(RatingAlert, StoreSheetOpensAndCloses) {
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

TEST(PresenterSearch, KeyWindowOrFirstNormalOneDepthFirstTopOfTheChain) {
  World world;
  Fake<ScreenController> first, second;
  const auto over = std::make_shared<Fake<ScreenController>>();
  const auto top = std::make_shared<Fake<ScreenController>>();
  FakeWindow leaf, branch, sibling, bare, alertLevel, normal;
  leaf.controller = &first;
  sibling.controller = &second;
  branch.views = {&bare, &leaf};
  alertLevel.level = 2000;
  alertLevel.views = {&sibling};
  normal.views = {&bare, &branch, &sibling};
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
  first.presentViewController(over, false, {});
  over->presentViewController(top, false, {});
  EXPECT_EQ(iterateSubViewsForViewController(normal), top.get());
}

TEST_F(RatingAlert, WordsAndWhereTheyComeFrom) {
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
  EXPECT_EQ(prompt.alertRateTitle(), prompt.alertTitle());

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

}  // namespace
}  // namespace endpin::fakes
