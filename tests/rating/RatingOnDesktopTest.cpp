// The application's life on a desktop, wired as it is, on a clock of the test's own: when it asks
// for a rating, on the real screen and answered with mouse and keyboard, and what counts as a
// return. Only sound, network and clock are fakes.
#include <QDesktopServices>
#include <QGuiApplication>

#include "adapters/bundle/FileBundle.h"
#include "adapters/sqlite/SqliteStore.h"
#include "desktop/AppLifecycle.h"
#include "tests/qt/LayoutFixture.h"
#include "tests/rating/FakeRatingPlatform.h"
#include "tests/support/TempDirectory.h"

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
  explicit Launch(const std::string& path, double now = kBegin) : store(path, fakes.log) {
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
      return store.integerForKey(Usage::kUseCount) == uses;
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
  // What the answer left in the store.
  std::string noted() const {
    if (store.doubleForKey(Usage::kReminderRequestDate) != 0) return "reminder";
    if (store.boolForKey(Usage::kDeclinedToRate)) return "declined";
    return store.boolForKey(Usage::kRatedCurrentVersion) ? "rated" : "";
  }

  fakes::FakePlatform fakes;
  fakes::FakeRatingPlatform world;
  SqliteStore store;
  FileBundle bundle{{ENDPIN_RESOURCES, "de", "1.0"}, fakes.log};
  Platform platform{fakes.input, fakes.session, fakes.players, fakes.output, fakes.runLoop,
                    store,       fakes.device,  bundle,        fakes.log};
  Application application{platform, false};
  LayoutWindow window{{.model = *deviceNamed("phone:844")}, application.controller(), fakes.log};
  std::optional<AppLifecycle> life;
};

struct RatingScreenTest : ::testing::Test {
  // The settings of somebody who has used this version for a while.
  std::string prepared(double days, std::int64_t uses) {
    const std::string path = folder.file(std::to_string(++stores) + ".db");
    SqliteStore store(path, log);
    store.setBool("NewFirstLaunchCello", true);
    store.setInteger("numberOfRuns", 20);
    store.setString(Usage::kCurrentVersion, "1.0");
    store.setDouble(Usage::kFirstUseDate, kBegin - days * kDay);
    store.setInteger(Usage::kUseCount, uses);
    return path;
  }
  // A run in which a preset has been chosen and it has been silent ever since.
  std::unique_ptr<Launch> asking() {
    auto run = std::make_unique<Launch>(prepared(1, 1));
    run->choosePreset();
    run->pass(11);
    EXPECT_TRUE(run->asks());
    return run;
  }
  testing::TempDirectory folder;
  int stores = 0;
  fakes::FakeLog log;
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
      {"Endpin bewerten", {}, "rated", false, false},
      {"Später erinnern", {}, "reminder", false, true},
      {"Nein, danke", {}, "declined", false, false},
      {"beside", {}, "reminder", false, true},
      {"", {Qt::Key_Escape}, "reminder", false, true},
      {"", {Qt::Key_Tab, Qt::Key_Return}, "rated", false, false},
      {"", {Qt::Key_Tab, Qt::Key_Tab, Qt::Key_Tab, Qt::Key_Space}, "declined", false, false},
      {"", {Qt::Key_Return}, "", true, true},  // a key that was still down is no answer
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.button + row.noted);
    const std::string path = prepared(1, 1);
    SoftwareCentre centre;
    {
      Launch run(path);
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
      EXPECT_EQ(run.noted(), row.noted);
      EXPECT_EQ(run.asks(), row.noted.empty());
      EXPECT_EQ(centre.opened.isEmpty(), row.noted != "rated");
      run.world.now = run.world.now + 4 * kDay;
      if (!row.noted.empty()) run.choosePreset();
      run.pass(11);
      EXPECT_EQ(run.asks(), row.noted.empty()) << "twice in a run";
    }
    for (const auto& [days, asks] : {std::pair{2.9, row.asksSoon}, {3.1, row.asksAfterThreeDays}}) {
      Launch again(path, kBegin + days * kDay);
      EXPECT_EQ(again.noted(), row.noted);
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
    run.pass(11);
    EXPECT_EQ(run.asks(), asks) << uses << " uses";
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
  EXPECT_EQ(run->noted(), "");
}

TEST_F(RatingScreenTest, ASecondAlertTakesThePlaceOfTheFirst) {
  const auto run = asking();
  run->press(Qt::Key_Tab);  // to a button that is about to go
  RatingPrompt::forceShowPrompt(false);
  EXPECT_TRUE(run->asks());
  EXPECT_EQ(run->dialog()->property("buttons").toStringList().size(), 2);
  run->press(Qt::Key_Escape);  // the second has the keyboard; it offers no later
  EXPECT_FALSE(run->asks());
  EXPECT_EQ(run->noted(), "");
}

TEST_F(RatingScreenTest, SaysWhenNothingOpensTheStorePage) {
  const auto run = asking();
  run->click(run->item("Endpin bewerten"));
  QTest::qWait(1);
  EXPECT_EQ(run->noted(), "rated");
  EXPECT_EQ(run->fakes.log.count("Nothing opens appstream:io.endpin.Endpin"), 1);
  ASSERT_TRUE(run->dialog());
  const QString text = run->bundle.localizedString("StorePageUnopened", "", "").c_str();
  EXPECT_TRUE(run->dialog()->property("title") == text ||
              run->dialog()->property("message") == text);
  EXPECT_FALSE(RatingPrompt::sharedInstance()->isRatingAlertVisible());
  run->click(run->item("Schließen"));
  EXPECT_FALSE(run->dialog());
}

}  // namespace
}  // namespace endpin

#include "RatingOnDesktopTest.moc"
