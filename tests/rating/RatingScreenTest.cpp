// The rating prompt on the real screen: the application is run, asked and answered with mouse and
// keyboard, ended and run again over the same settings. Only the network and the store are fakes.
#include <gtest/gtest.h>

#include <QGuiApplication>
#include <QQuickItem>
#include <QTest>
#include <atomic>

#include "adapters/bundle/FileBundle.h"
#include "adapters/qt/LayoutWindow.h"
#include "adapters/qt/QtRunLoop.h"
#include "adapters/rating/ActivationWatch.h"
#include "adapters/rating/DialogScreen.h"
#include "adapters/rating/NoResourceBundles.h"
#include "adapters/rating/SystemClock.h"
#include "adapters/rating/ThreadQueues.h"
#include "adapters/sqlite/SqliteStore.h"
#include "app/AppDelegate.h"
#include "app/ViewController.h"
#include "audio/LumoListener.h"
#include "rating/RatingPrompt.h"
#include "tests/fakes/FakePlatform.h"
#include "tests/support/TempDirectory.h"

namespace endpin {
namespace {

using Book = UsageBook;
using Keys = std::vector<Qt::Key>;
constexpr double kDay = 86400;

struct World final : Reachability, Probes, UrlOpener {
  std::optional<std::uint32_t> flagsForAddress(const SocketAddress&) override {
    return kReachabilityReachable;
  }
  TaskState resume(const ProbeRequest&) override { return TaskState::Running; }
  void openUrl(const std::string& url) override { opened.push_back(url); }
  std::vector<std::string> opened;
};

QQuickItem* find(QQuickItem* top, const char* property, const QVariant& value) {
  if (top->property(property) == value && top->isVisible()) return top;
  for (QQuickItem* child : top->childItems()) {
    if (QQuickItem* found = find(child, property, value)) return found;
  }
  return nullptr;
}

// One run of the application.
struct Launch {
  explicit Launch(const std::string& path) : store(path, fakes.log) {
    RatingPrompt::usePlatform({clock, queues, runLoop, store, world, world, bundle, fakes.log,
                               fakes.device, activation, bundles, screen, world, nullptr, nullptr,
                               &screen, nullptr});
    window.setReducedMotion(true);
    AppDelegate({fakes.device, window, fakes.log}).applicationDidFinishLaunching();
  }
  Launch(const Launch&) = delete;
  ~Launch() {
    RatingPrompt::releaseSharedInstance();
    LumoListener::releaseSharedListener();
  }

  QQuickItem* item(const char* property, const QVariant& value) {
    return find(window.root(), property, value);
  }
  bool asks() { return item("objectName", "ratingDialog") != nullptr; }
  void click(QQuickItem* item) {
    ASSERT_TRUE(item);
    QTest::qWait(1);  // what just appeared is laid out
    const QPointF middle(item->width() / 2, item->height() / 2);
    QTest::mouseClick(&window.window(), Qt::LeftButton, {}, item->mapToScene(middle).toPoint());
  }
  void choosePreset() {
    window.root()->setProperty("openPanel", "settings");
    click(item("action", "setA442"));
  }
  // The launch has been counted and what follows from it has happened.
  void settle(std::int64_t uses) {
    EXPECT_TRUE(QTest::qWaitFor([&] { return store.integerForKey(Book::kUseCount) == uses; }));
    QTest::qWait(50);
  }
  // What the answer left in the store.
  std::string noted() const {
    if (store.doubleForKey(Book::kReminderRequestDate) > clock.secondsSince1970() - 60) {
      return "reminder";
    }
    if (store.boolForKey(Book::kDeclinedToRate)) return "declined";
    return store.boolForKey(Book::kRatedCurrentVersion) ? "rated" : "";
  }

  fakes::FakePlatform fakes;
  World world;
  SqliteStore store;
  QtRunLoop runLoop;
  FileBundle bundle{{ENDPIN_RESOURCES, "de", "1.0"}, fakes.log};
  Platform platform{fakes.input, fakes.session, fakes.players, fakes.output, runLoop,
                    store,       fakes.device,  bundle,        fakes.log};
  ViewController controller{platform, false};
  LayoutWindow window{{.model = *deviceNamed("phone:844"),
                       .presentation = Presentation::Picture,
                       .texts = {},
                       .version = {},
                       .openPanel = {}},
                      controller,
                      fakes.log};
  SystemClock clock;
  ActivationWatch activation;
  NoResourceBundles bundles;
  DialogScreen screen{window.window(), fakes.log};
  ThreadQueues queues;
};

struct RatingScreen : ::testing::Test {
  // The settings of somebody who has used this version for a while.
  void prepare(double days, std::int64_t uses) {
    path = folder.file(std::to_string(++stores) + ".db");
    fakes::FakeLog log;
    SqliteStore store(path, log);
    store.setBool("NewFirstLaunchCello", true);
    store.setInteger("numberOfRuns", 20);
    store.setString(Book::kCurrentVersion, "1.0");
    store.setDouble(Book::kFirstUseDate, SystemClock().secondsSince1970() - days * kDay);
    store.setInteger(Book::kUseCount, uses);
  }

  testing::TempDirectory folder;
  int stores = 0;
  std::string path;
};

TEST_F(RatingScreen, AsksAfterAPresetAndEachAnswerLasts) {
  const struct {
    const char* button;
    Keys keys;
    const char* noted;
    std::size_t opened;
    bool asksAgain;
  } rows[] = {
      {"Endpin bewerten", {}, "rated", 1, false},
      {"Später erinnern", {}, "reminder", 0, true},  // a preset asks before the reminder is due
      {"Nein, danke", {}, "declined", 0, false},
      {nullptr, {Qt::Key_Escape}, "reminder", 0, true},
      {nullptr, {Qt::Key_Tab, Qt::Key_Return}, "rated", 1, false},
      {nullptr, {Qt::Key_Tab, Qt::Key_Tab, Qt::Key_Tab, Qt::Key_Space}, "declined", 0, false},
      {nullptr, {Qt::Key_Return}, "", 0, true},  // the key that chose the preset is no answer
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(std::string(row.button ? row.button : "keys") + " " + row.noted);
    prepare(1, 1);
    {
      Launch run(path);
      run.settle(2);
      EXPECT_FALSE(run.asks());
      run.choosePreset();
      ASSERT_TRUE(run.asks());
      run.click(run.item("action", "setA415"));  // the dialog covers the rest
      QTest::qWait(1);
      if (row.button) run.click(run.item("modelData", row.button));
      for (const Qt::Key key : row.keys) QTest::keyClick(&run.window.window(), key);
      EXPECT_EQ(run.noted(), row.noted);
      EXPECT_EQ(run.asks(), *row.noted == '\0');
      EXPECT_EQ(run.world.opened.size(), row.opened);
      EXPECT_EQ(run.store.integerForKey("a4InHzSavedValue"), 442);
      EXPECT_EQ(run.fakes.log.count("The layout has no dialog to ask for a rating."), 0);
    }
    Launch again(path);
    EXPECT_EQ(again.noted(), row.noted);
    again.choosePreset();
    EXPECT_EQ(again.asks(), row.asksAgain);
  }
}

TEST_F(RatingScreen, AsksByItselfWhenItIsTimeAndNotBeforeTheReminder) {
  prepare(5, 5);
  for (const auto& [uses, asks] : {std::pair{6, false}, {7, true}, {8, false}}) {
    Launch run(path);
    run.settle(uses);
    EXPECT_EQ(run.asks(), asks) << uses << " uses";
    if (asks) run.click(run.item("modelData", "Später erinnern"));
  }
}

TEST_F(RatingScreen, HidesWhenTheApplicationResignsNotWhenTheFocusMoves) {
  prepare(1, 1);
  Launch run(path);
  run.choosePreset();
  ASSERT_EQ(QGuiApplication::applicationState(), Qt::ApplicationActive);
  QQuickWindow other;
  other.show();
  other.requestActivate();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&other));
  EXPECT_TRUE(run.asks());
  Q_EMIT qGuiApp->applicationStateChanged(Qt::ApplicationInactive);  // as the desktop has it
  EXPECT_FALSE(RatingPrompt::sharedInstance()->isRatingAlertVisible());
  EXPECT_FALSE(run.asks());
  EXPECT_EQ(run.noted(), "");
  Q_EMIT qGuiApp->applicationStateChanged(Qt::ApplicationActive);
  run.choosePreset();
  EXPECT_TRUE(run.asks());
}

TEST_F(RatingScreen, ASecondAlertTakesThePlaceOfTheFirst) {
  prepare(1, 1);
  Launch run(path);
  int answers = 0;
  const auto present = [&](const char* title) {
    const auto alert = run.screen.newAlert(title, "", AlertControllerStyle::Alert);
    alert->addAction(title, AlertActionStyle::Cancel, [&](std::string_view pressed) {
      ++answers;
      EXPECT_EQ(pressed, "second");
      EXPECT_FALSE(run.asks());
    });
    auto* root = run.screen.keyWindow()->rootViewController();
    auto* over = root->presentedViewController();
    (over ? over : root)->presentViewController(alert, true, {});
    EXPECT_TRUE(alert->viewHasSuperview());
    EXPECT_EQ(root->presentedViewController(), alert.get());
    return alert;
  };
  const auto first = present("first");
  QTest::qWait(1);
  QTest::keyClick(&run.window.window(), Qt::Key_Tab);  // to a button that is about to go
  const auto second = present("second");
  EXPECT_FALSE(first->viewHasSuperview());
  first->dismissViewController(false, {});  // does not touch the second
  EXPECT_TRUE(run.asks() && second->viewHasSuperview());
  QTest::keyClick(&run.window.window(), Qt::Key_Escape);  // which has the keyboard
  EXPECT_EQ(answers, 1);
  EXPECT_FALSE(second->viewHasSuperview());
}

TEST(RatingDialogs, ALayoutWithoutOneShowsNothingAndSaysSoOnce) {
  QQuickWindow empty;
  fakes::FakeLog log;
  DialogScreen screen(empty, log);
  for (int i = 0; i < 3; ++i) {
    const auto alert = screen.newAlert("", "", AlertControllerStyle::Alert);
    screen.keyWindow()->rootViewController()->presentViewController(alert, true, [] { FAIL(); });
    EXPECT_FALSE(alert->viewHasSuperview());
  }
  EXPECT_EQ(log.lines.size(), 1U);
}

}  // namespace
}  // namespace endpin
