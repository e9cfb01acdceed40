// The application's life on a desktop, wired as it is, on a clock of the test's own: when it asks
// for a rating, on the real screen and answered with mouse and keyboard, and what counts as a
// return. Sound, network, clock, settings and texts are fakes.
#include <QDesktopServices>
#include <QGuiApplication>

#include "desktop/AppLifecycle.h"
#include "tests/qt/LayoutFixture.h"
#include "tests/rating/FakeRatingPlatform.h"

namespace endpin {
namespace {

using Usage = UsageTracker;
constexpr double kDay = 86400;
constexpr double kBegin = 1.7e9;  // seconds since 1970

class SoftwareCentre : public QObject {
  Q_OBJECT
 public:
  SoftwareCentre() { QDesktopServices::setUrlHandler("appstream", this, "open"); }
  ~SoftwareCentre() override { QDesktopServices::unsetUrlHandler("appstream"); }
  Q_INVOKABLE void open(const QUrl& page) { opened = page; }
  QUrl opened;
};

// One run of the application.
struct Launch {
  explicit Launch(fakes::FakeRatingPlatform& outside, double now = kBegin) : world(outside) {
    world.now = now;
    window.setReducedMotion(true);
    QGuiApplication::setDesktopFileName("io.endpin.Endpin");
    life.emplace(application, platform, window,
                 AppLifecycle::Outside{.clock = world, .reachability = world, .probes = world});
  }
  void pass(double seconds) {
    world.now = world.now + seconds;
    fakes.runLoop.advance(seconds);
    QTest::qWait(1);
  }
  // Until the launch or a return has been counted, and what follows from it has happened.
  [[nodiscard]] bool counts(std::int64_t uses, int milliseconds = 5000) {
    const auto counted = [&] {
      pass(0);
      return world.store.integerForKey(Usage::kUseCount) == uses;
    };
    return QTest::qWaitFor(counted, milliseconds);
  }
  QQuickItem* item(const QString& wanted) { return findItem(*window.root(), wanted); }
  QQuickItem* dialog() { return item("ratingDialog"); }
  bool asks() {
    const bool asking = dialog() != nullptr;
    const auto alert = RatingPrompt::sharedInstance();
    EXPECT_EQ(alert->isRatingAlertVisible(), asking) << "what the prompt believes";
    return asking;
  }
  void click(QQuickItem* item, double across = 0.5, double down = 0.5) {
    ASSERT_TRUE(item);
    window.window().grabWindow();  // what just appeared is laid out
    const QPointF point(item->width() * across, item->height() * down);
    QTest::mouseClick(&window.window(), Qt::LeftButton, {}, item->mapToScene(point).toPoint());
  }
  void press(Qt::Key key) { QTest::keyClick(&window.window(), key); }
  void play(float level, double seconds) {
    fakes.input.queue->level.mAveragePower = level;
    pass(seconds);
  }
  void openPanel(const char* name) { window.root()->setProperty("openPanel", name); }
  void choosePreset() {
    openPanel("settings");
    click(item("setA442"));
    openPanel("");
  }

  fakes::FakeRatingPlatform& world;
  fakes::FakePlatform fakes;
  Platform platform{fakes.input, fakes.session, fakes.players, fakes.output, fakes.runLoop,
                    world.store, fakes.device,  world.bundle,  fakes.log};
  Application application{platform, false};
  LayoutWindow window{{.model = *deviceNamed("phone:844")}, application.controller(), fakes.log};
  std::optional<AppLifecycle> life;
};

struct RatingScreenTest : ::testing::Test {
  // The settings of somebody who has used this version for a while.
  fakes::FakeRatingPlatform& prepared(double days, std::int64_t uses) {
    world.store.removeAll();
    world.store.setBool("NewFirstLaunchCello", true);
    world.store.setInteger("numberOfRuns", 20);
    world.store.setString(Usage::kCurrentVersion, "1.0");
    world.store.setDouble(Usage::kFirstUseDate, kBegin - days * kDay);
    world.store.setInteger(Usage::kUseCount, uses);
    return world;
  }
  // A run in which a preset has been chosen and it has been silent ever since.
  std::unique_ptr<Launch> asking() {
    auto run = std::make_unique<Launch>(prepared(1, 1));
    run->choosePreset();
    run->pass(11);
    EXPECT_TRUE(run->asks());
    return run;
  }
  fakes::FakeRatingPlatform world;
};

TEST_F(RatingScreenTest, WaitsForAClosedPanelAndTenSecondsOfSilence) {
  Launch run(prepared(1, 1));
  run.choosePreset();
  run.openPanel("chart");
  run.pass(30);
  EXPECT_FALSE(run.asks()) << "a panel is open";
  run.play(0.1F, 1);
  run.openPanel("");
  run.play(0.1F, 30);
  EXPECT_FALSE(run.asks()) << "a string sounds";
  run.application.controller().playA3();
  run.play(0, 30);
  EXPECT_FALSE(run.asks()) << "the tuning fork plays";
  run.application.controller().stopFreqPlay();
  run.play(0, 9);
  run.play(0.1F, 0.2);
  run.play(0, 9.5);
  EXPECT_FALSE(run.asks()) << "it has sounded less than ten seconds ago";
  run.play(0, 0.8);
  EXPECT_TRUE(run.asks());
}

TEST_F(RatingScreenTest, AsksOnceARunAndEachAnswerLasts) {
  using Keys = std::vector<Qt::Key>;
  const struct {
    const char* button;
    Keys keys;
    std::string noted;
    bool asksSoon, asksAfterThreeDays;
  } rows[] = {
      {"Rate Endpin", {}, "rated", false, false},
      {"Remind me later", {}, "reminder", false, true},
      {"beside", {}, "reminder", false, true},
      {"", {Qt::Key_Escape}, "reminder", false, true},
      {"", {Qt::Key_Tab, Qt::Key_Tab, Qt::Key_Tab, Qt::Key_Space}, "declined", false, false},
      {"", {Qt::Key_Return}, "", true, true},  // a key that was still down is no answer
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.button + row.noted);
    SoftwareCentre centre;
    {
      Launch run(prepared(1, 1));
      ASSERT_TRUE(run.counts(2));
      run.choosePreset();
      run.pass(11);
      ASSERT_TRUE(run.asks());
      run.click(run.dialog(), 0.08, 0.5);  // its card, beside the buttons
      if (std::string_view("beside") == row.button) {
        run.click(run.dialog(), 0.5, 0.02);
      } else if (*row.button) {
        run.click(run.item(row.button));
      }
      for (const Qt::Key key : row.keys) run.press(key);
      EXPECT_EQ(world.noted(), row.noted);
      EXPECT_EQ(run.asks(), row.noted.empty());
      EXPECT_EQ(centre.opened.isEmpty(), row.noted != "rated");
      world.now = world.now + 4 * kDay;
      if (!row.noted.empty()) run.choosePreset();
      run.pass(11);
      EXPECT_EQ(run.asks(), row.noted.empty()) << "twice in a run";
    }
    for (const auto& [days, asks] : {std::pair{2.9, row.asksSoon}, {3.1, row.asksAfterThreeDays}}) {
      Launch again(world, kBegin + days * kDay);
      EXPECT_EQ(world.noted(), row.noted);
      again.choosePreset();
      again.pass(11);
      EXPECT_EQ(again.asks(), asks) << days;
    }
  }
}

// At the launch, by days and uses, and at a return to the foreground.
TEST_F(RatingScreenTest, AsksByItselfWhenItIsTime) {
  for (const auto& [uses, asks] : {std::pair{6, false}, {7, true}}) {
    Launch run(prepared(5, uses - 1));
    ASSERT_TRUE(run.counts(uses));
    run.pass(0.1);
    EXPECT_FALSE(run.asks());
    const auto askedAfterAll = [&] {  // the wish comes from another thread
      run.pass(1);
      return run.asks();
    };
    EXPECT_EQ(QTest::qWaitFor(askedAfterAll, asks ? 5000 : 200), asks) << uses << " uses";
  }
}

TEST_F(RatingScreenTest, CountsReturnsOfTheUserAndNotOfTheKeyboard) {
  const struct {
    const char* what;
    double away;  // seconds
    bool hidden, counts;
  } rows[] = {{"a notification", 9, false, false},
              {"another application", 11, false, true},
              {"a window put away", 0.1, true, true}};
  for (const auto& row : rows) {
    Launch run(prepared(1, 1));
    ASSERT_TRUE(run.counts(2));
    if (row.hidden) run.window.window().hide();
    Q_EMIT qGuiApp->applicationStateChanged(Qt::ApplicationInactive);  // as the desktop has it
    run.pass(row.away);
    run.window.window().show();
    EXPECT_FALSE(run.counts(3, 0)) << "not before it has the user";
    Q_EMIT qGuiApp->applicationStateChanged(Qt::ApplicationActive);
    EXPECT_EQ(run.counts(3, row.counts ? 5000 : 50), row.counts) << row.what;
    Q_EMIT qGuiApp->applicationStateChanged(Qt::ApplicationActive);
    EXPECT_FALSE(run.counts(4, 50)) << "twice";
  }
}

TEST_F(RatingScreenTest, HidesWhenTheApplicationResignsNotWhenTheFocusMoves) {
  const auto run = asking();
  QQuickWindow other;
  other.show();
  other.requestActivate();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&other));
  EXPECT_TRUE(run->asks());
  Q_EMIT qGuiApp->applicationStateChanged(Qt::ApplicationInactive);  // as the desktop has it
  EXPECT_FALSE(run->asks());
  EXPECT_EQ(world.noted(), "");
}

TEST_F(RatingScreenTest, ASecondAlertTakesThePlaceOfTheFirst) {
  const auto run = asking();
  run->press(Qt::Key_Tab);  // to a button that is about to go
  RatingPrompt::forceShowPrompt(false);
  EXPECT_TRUE(run->asks());
  EXPECT_EQ(run->dialog()->property("buttons").toStringList().size(), 2);
  run->press(Qt::Key_Escape);  // the second has the keyboard; it offers no later
  EXPECT_FALSE(run->asks());
  EXPECT_EQ(world.noted(), "");
}

TEST_F(RatingScreenTest, SaysWhenNothingOpensTheStorePage) {
  const auto run = asking();
  run->click(run->item("Rate Endpin"));
  QTest::qWait(1);
  EXPECT_EQ(world.noted(), "rated");
  EXPECT_EQ(run->fakes.log.count("Nothing opens appstream:io.endpin.Endpin"), 1);
  ASSERT_TRUE(run->dialog());
  EXPECT_EQ(run->dialog()->property("message"), "[StorePageUnopened]");
  EXPECT_FALSE(RatingPrompt::sharedInstance()->isRatingAlertVisible());
  run->click(run->item("[CloseTitle]"));
  EXPECT_FALSE(run->dialog());
}

}  // namespace
}  // namespace endpin

#include "RatingOnDesktopTest.moc"
