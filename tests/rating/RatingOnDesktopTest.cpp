// The rating prompt on a desktop: its queues and network against servers of the test's own, its
// dialog on the real screen, answered with mouse and keyboard. Nothing here leaves the machine.
#include <dlfcn.h>
#include <malloc.h>
#include <net/if.h>
#include <net/route.h>
#include <netdb.h>
#include <netinet/in.h>
#include <sched.h>
#include <sys/ioctl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <QDesktopServices>
#include <QGuiApplication>
#include <QQuickItem>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTest>
#include <semaphore>

#include "adapters/bundle/FileBundle.h"
#include "adapters/qt/LayoutWindow.h"
#include "adapters/qt/QtRunLoop.h"
#include "adapters/sqlite/SqliteStore.h"
#include "app/Application.h"
#include "desktop/Rating.h"
#include "tests/rating/FakeRatingPlatform.h"
#include "tests/support/TempDirectory.h"

namespace {

std::binary_semaphore nameServerAnswers{0}, nameServerAsked{0};

}  // namespace

// Stands in for the system's: the name server of "hung.invalid" does not answer until it is let.
extern "C" int getaddrinfo(const char* host, const char* service, const addrinfo* hints,
                           addrinfo** result) {
  if (host && std::string_view(host) == "hung.invalid") {
    nameServerAsked.release();
    nameServerAnswers.acquire();
    return EAI_AGAIN;
  }
  static const auto system =
      reinterpret_cast<decltype(&getaddrinfo)>(dlsym(RTLD_NEXT, "getaddrinfo"));
  return system(host, service, hints, result);
}

namespace endpin {
namespace {

using namespace std::chrono_literals;
using Now = std::chrono::steady_clock;

struct HttpProbesTest : ::testing::Test {
  HttpProbesTest() {
    site.listen(QHostAddress::LocalHost);
    QObject::connect(&site, &QTcpServer::newConnection, [this] {
      QTcpSocket* socket = sockets.emplace_back(site.nextPendingConnection());
      QObject::connect(socket, &QTcpSocket::readyRead, [this, socket] {
        heard += socket->readAll();
        socket->write(answer);
      });
    });
  }
  [[nodiscard]] ProbeRequest page(const char* host = "127.0.0.1") const {
    return {.url = "http://" + std::string(host) + ":" + std::to_string(site.serverPort()) + "/"};
  }
  // Asks until there is one connection more.
  bool connects(HttpProbes& probes, const ProbeRequest& request) {
    return QTest::qWaitFor([&, wanted = sockets.size() + 1] {
      probes.resume(request);
      QTest::qWait(5);
      return sockets.size() == wanted;
    });
  }
  bool lastOneEnds() {
    return QTest::qWaitFor(
        [&] { return sockets.back()->state() == QAbstractSocket::UnconnectedState; });
  }
  QTcpServer site;
  std::vector<QTcpSocket*> sockets;
  QByteArray heard, answer;  // without one it never ends
  const Now::time_point begin = Now::now();
};

TEST_F(HttpProbesTest, AreOneHoweverManyAreAskedFor) {
  HttpProbes probes(0ms);
  EXPECT_EQ(probes.resume(page()), Probes::TaskState::Running);
  ASSERT_TRUE(QTest::qWaitFor([&] { return heard.endsWith("\r\n\r\n"); }));
  const auto held = mallinfo2().uordblks;  // bytes
  const auto askOften = [&] {
    for (int n = 0; n < 5000; ++n) probes.resume(page());
  };
  std::thread other(askOften);
  askOften();
  other.join();
  QTest::qWait(200);
  EXPECT_EQ(sockets.size(), 1U);
  EXPECT_LT(mallinfo2().uordblks, held + 64 * 1024);
  sockets[0]->abort();
  EXPECT_TRUE(connects(probes, page()));
}

TEST_F(HttpProbesTest, KeepNothingFollowNothingAndTakeTheirTime) {
  answer =
      "HTTP/1.1 302 Found\r\nLocation: /elsewhere\r\nSet-Cookie: a=b\r\n"
      "Content-Length: 1000000000\r\n\r\n" +
      QByteArray(100000, 'x');
  HttpProbes probes(300ms);
  for (const char* host : {"127.0.0.1", "localhost"}) {
    ASSERT_TRUE(connects(probes, page(host)));
    ASSERT_TRUE(lastOneEnds());
  }
  EXPECT_GE(Now::now() - begin, 290ms);
  EXPECT_EQ(heard.count("GET / HTTP/1.1\r\n"), 2) << heard.data();
  EXPECT_EQ(heard.count("GET"), 2);
  EXPECT_EQ(heard.count("Cookie"), 0);
  const auto host = "Host: localhost:" + QByteArray::number(site.serverPort()) + "\r\n";
  EXPECT_EQ(heard.count(host), 1) << heard.data();
}

TEST_F(HttpProbesTest, GiveUpAfterTheTimeAndAtTheEnd) {
  std::optional<HttpProbes> probes(0ms);
  ProbeRequest impatient = page();
  impatient.timeoutInterval = 0.2;
  for (int i = 0; i < 3; ++i) ASSERT_TRUE(connects(*probes, impatient));
  EXPECT_GE(Now::now() - begin, 350ms);  // the timer is a coarse one
  const auto end = Now::now();
  probes.reset();
  EXPECT_LT(Now::now() - end, 1s);
  EXPECT_TRUE(lastOneEnds());
}

TEST_F(HttpProbesTest, DoNotWaitForANameServerThatHangs) {
  answer = "HTTP/1.1 204 No Content\r\n\r\n";
  std::optional<HttpProbes> probes(0ms);
  const auto lookUp = [&] {
    return QTest::qWaitFor([&] {
      probes->resume({.url = "http://hung.invalid/"});
      return nameServerAsked.try_acquire();
    });
  };
  ASSERT_TRUE(lookUp());
  nameServerAnswers.release();  // that there is no such host
  ASSERT_TRUE(connects(*probes, page()));
  ASSERT_TRUE(lookUp());
  const auto end = Now::now();
  probes.reset();
  EXPECT_LT(Now::now() - end, 1s);
  nameServerAnswers.release();  // too late for anybody
  QTest::qWait(20);
}

TEST(ThreadQueues, KeepTheOrderStepBackAndEndWithWhatRuns) {
  std::optional<ThreadQueues> queues(std::in_place);
  std::atomic<int> niceness = 0;
  queues->dispatchAsync(kWorkPriorityBackground,
                        [&] { niceness = getpriority(PRIO_PROCESS, static_cast<id_t>(gettid())); });
  std::vector<int> order, counted(101);
  std::iota(counted.begin(), counted.end(), 0);
  std::atomic<bool> running = false;
  auto queue = queues->newOperationQueue();
  for (int i = 0; i < 100; ++i) queue->addOperation([&order, i] { order.push_back(i); });
  queue->addOperation([&] {
    running = true;
    std::this_thread::sleep_for(50ms);
    order.push_back(100);
  });
  queue->addOperation([&] { order.push_back(101); });
  EXPECT_TRUE(QTest::qWaitFor([&] { return running && niceness != 0; }));
  queue.reset();
  queues.reset();
  EXPECT_EQ(niceness, std::min(getpriority(PRIO_PROCESS, 0) + 10, 19));
  EXPECT_EQ(order, counted);
}

// In a network of its own, which is a thread's private matter.
TEST(RouteReachability, FollowsTheRoutingTable) {
  RouteReachability reachability;
  const auto anywhere = [&] { return reachability.flagsForAddress({}); };
  const auto here = [&] { return reachability.flagsForAddress({.address = 0x7F000001}); };
  EXPECT_EQ(here(), kReachabilityReachable);
  bool allowed = false;
  std::thread([&] {
    allowed = unshare(CLONE_NEWNET) == 0;
    if (!allowed) return;
    EXPECT_EQ(anywhere(), 0U);
    const int control = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    ifreq loop{.ifr_ifrn = {"lo"}, .ifr_ifru = {}};
    loop.ifr_flags = IFF_UP;
    EXPECT_EQ(ioctl(control, SIOCSIFFLAGS, &loop), 0);
    EXPECT_EQ(here(), kReachabilityReachable);
    EXPECT_EQ(anywhere(), 0U);
    rtentry everything{};
    everything.rt_dst.sa_family = everything.rt_genmask.sa_family = AF_INET;
    everything.rt_flags = RTF_UP;
    everything.rt_dev = loop.ifr_name;
    EXPECT_EQ(ioctl(control, SIOCADDRT, &everything), 0);
    EXPECT_EQ(anywhere(), kReachabilityReachable);
    close(control);
  }).join();
  if (!allowed) GTEST_SKIP() << "no network of its own without privileges";
}

class SoftwareCentre : public QObject {
  Q_OBJECT
 public:
  Q_INVOKABLE void open(const QUrl& page) { opened = page; }
  QUrl opened;
};

// Without windows there is no desktop that opens anything; the test then takes its place.
TEST(DesktopUrlOpener, OpensThePageInTheSoftwareCentreOrSaysSo) {
  QGuiApplication::setDesktopFileName("io.endpin.Endpin");
  fakes::FakeLog log;
  DesktopUrlOpener opener(log);
  opener.openUrl("itms-apps://store.invalid/app/id0");
  SoftwareCentre centre;
  QDesktopServices::setUrlHandler("appstream", &centre, "open");
  opener.openUrl("itms-apps://store.invalid/app/id0");
  QDesktopServices::unsetUrlHandler("appstream");
  EXPECT_EQ(centre.opened, QUrl("appstream:io.endpin.Endpin"));
  EXPECT_EQ(log.lines, std::vector<std::string>{"Nothing opens appstream:io.endpin.Endpin"});
}

using Book = UsageTracker;

QQuickItem* find(QQuickItem* top, const char* property, const QVariant& value) {
  if (top->property(property) == value && top->isVisible()) return top;
  for (QQuickItem* child : top->childItems()) {
    if (QQuickItem* found = find(child, property, value)) return found;
  }
  return nullptr;
}

// One run of the application. Only the network and the store are fakes.
struct Launch {
  explicit Launch(const std::string& path) : store(path, fakes.log) {
    RatingPrompt::usePlatform({clock, queues, runLoop, store, world, world, bundle, fakes.log,
                               fakes.device, activation, screen, world, nullptr, nullptr, nullptr,
                               &screen, nullptr});
    window.setReducedMotion(true);
    application.launch(window);
  }
  ~Launch() { RatingPrompt::releaseSharedInstance(); }
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
  void press(Qt::Key key) { QTest::keyClick(&window.window(), key); }
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
    if (store.doubleForKey(Book::kReminderRequestDate) != 0) return "reminder";
    if (store.boolForKey(Book::kDeclinedToRate)) return "declined";
    return store.boolForKey(Book::kRatedCurrentVersion) ? "rated" : "";
  }

  fakes::FakePlatform fakes;
  fakes::FakeRatingPlatform world;
  SqliteStore store;
  QtRunLoop runLoop;
  FileBundle bundle{{ENDPIN_RESOURCES, "de", "1.0"}, fakes.log};
  Platform platform{fakes.input, fakes.session, fakes.players, fakes.output, runLoop,
                    store,       fakes.device,  bundle,        fakes.log};
  Application application{platform, false};
  ViewController& controller = application.controller();
  LayoutWindow window{{.model = *deviceNamed("phone:844")}, controller, fakes.log};
  SystemClock clock;
  ActivationWatch activation;
  DialogScreen screen{window.window(), fakes.log};
  ThreadQueues queues;
};

struct RatingScreen : ::testing::Test {
  // The settings of somebody who has used this version for a while.
  std::string prepared(double days, std::int64_t uses) {
    const std::string path = folder.file(std::to_string(++stores) + ".db");
    SqliteStore store(path, log);
    store.setBool("NewFirstLaunchCello", true);
    store.setInteger("numberOfRuns", 20);
    store.setString(Book::kCurrentVersion, "1.0");
    store.setDouble(Book::kFirstUseDate, SystemClock().secondsSince1970() - days * 86400);
    store.setInteger(Book::kUseCount, uses);
    return path;
  }
  testing::TempDirectory folder;
  int stores = 0;
  fakes::FakeLog log;
};

TEST_F(RatingScreen, AsksAfterAPresetAndEachAnswerLasts) {
  const struct {
    const char* button;
    std::vector<Qt::Key> keys;
    std::string noted;
    bool asksAgain;
  } rows[] = {
      {"Endpin bewerten", {}, "rated", false},
      {"Später erinnern", {}, "reminder", true},  // a preset asks before the reminder is due
      {"Nein, danke", {}, "declined", false},
      {"", {Qt::Key_Escape}, "reminder", true},
      {"", {Qt::Key_Tab, Qt::Key_Return}, "rated", false},
      {"", {Qt::Key_Tab, Qt::Key_Tab, Qt::Key_Tab, Qt::Key_Space}, "declined", false},
      {"", {Qt::Key_Return}, "", true},  // the key that chose the preset is no answer
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.button + row.noted);
    const std::string path = prepared(1, 1);
    {
      Launch run(path);
      run.settle(2);
      EXPECT_FALSE(run.asks());
      run.choosePreset();
      ASSERT_TRUE(run.asks());
      run.click(run.item("action", "setA415"));  // the dialog covers the rest
      QTest::qWait(1);
      if (*row.button) run.click(run.item("modelData", row.button));
      for (const Qt::Key key : row.keys) run.press(key);
      EXPECT_EQ(run.noted(), row.noted);
      EXPECT_EQ(run.asks(), row.noted.empty());
      EXPECT_EQ(run.world.urls.size(), row.noted == "rated" ? 1U : 0U);
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
  const std::string path = prepared(5, 5);
  for (const auto& [uses, asks] : {std::pair{6, false}, {7, true}, {8, false}}) {
    Launch run(path);
    run.settle(uses);
    EXPECT_EQ(run.asks(), asks) << uses << " uses";
    if (asks) run.click(run.item("modelData", "Später erinnern"));
  }
}

TEST_F(RatingScreen, HidesWhenTheApplicationResignsNotWhenTheFocusMoves) {
  Launch run(prepared(1, 1));
  run.choosePreset();
  ASSERT_EQ(QGuiApplication::applicationState(), Qt::ApplicationActive);
  QQuickWindow other;
  other.show();
  other.requestActivate();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&other));
  EXPECT_TRUE(run.asks());
  Q_EMIT qGuiApp->applicationStateChanged(Qt::ApplicationInactive);  // as the desktop has it
  EXPECT_FALSE(RatingPrompt::sharedInstance()->isRatingAlertVisible() || run.asks());
  EXPECT_EQ(run.noted(), "");
  Q_EMIT qGuiApp->applicationStateChanged(Qt::ApplicationActive);
  run.choosePreset();
  EXPECT_TRUE(run.asks());
}

TEST_F(RatingScreen, ASecondAlertTakesThePlaceOfTheFirst) {
  Launch run(prepared(1, 1));
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
  run.press(Qt::Key_Tab);  // to a button that is about to go
  const auto second = present("second");
  EXPECT_FALSE(first->viewHasSuperview());
  first->dismissViewController(false, {});  // does not touch the second
  EXPECT_TRUE(run.asks() && second->viewHasSuperview());
  run.press(Qt::Key_Escape);  // to the second, which has the keyboard
  EXPECT_EQ(answers, 1);
  EXPECT_FALSE(second->viewHasSuperview());
}

TEST_F(RatingScreen, ALayoutWithoutADialogShowsNothingAndSaysSoOnce) {
  QQuickWindow empty;
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

#include "RatingOnDesktopTest.moc"
