// The queues, the network and the store page of a desktop, against servers and programs of the
// test's own. Nothing here leaves the machine.
#include <dlfcn.h>
#include <gtest/gtest.h>
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
#include <QTcpServer>
#include <QTcpSocket>
#include <QTest>
#include <chrono>
#include <filesystem>
#include <semaphore>

#include "adapters/rating/DesktopUrlOpener.h"
#include "adapters/rating/HttpProbes.h"
#include "adapters/rating/RouteReachability.h"
#include "adapters/rating/ThreadQueues.h"
#include "tests/fakes/FakePlatform.h"

namespace {

std::binary_semaphore nameServerAnswers{0};
std::binary_semaphore nameServerAsked{0};

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
using Clock = std::chrono::steady_clock;

// Answers nothing until it is told to.
struct WebSite {
  WebSite() {
    server.listen(QHostAddress::LocalHost);
    QObject::connect(&server, &QTcpServer::newConnection, [this] {
      QTcpSocket* socket = server.nextPendingConnection();
      sockets.push_back(socket);
      QObject::connect(socket, &QTcpSocket::readyRead, [this, socket] {
        heard += socket->readAll();
        if (!answer.isEmpty()) socket->write(answer);
      });
    });
  }
  [[nodiscard]] ProbeRequest page(const char* host = "127.0.0.1") const {
    return {.url = "http://" + std::string(host) + ":" + std::to_string(server.serverPort()) + "/"};
  }
  bool hasConnections(std::size_t count) {
    return QTest::qWaitFor([&] { return sockets.size() >= count; }) && sockets.size() == count;
  }
  QTcpServer server;
  std::vector<QTcpSocket*> sockets;
  QByteArray heard, answer;
};

struct SoftwareCentre final : QObject {
  Q_OBJECT

 public:
  Q_INVOKABLE void open(const QUrl& url) { opened = url; }
  QUrl opened;
};

auto entriesOf(const char* folder) {
  return std::distance(std::filesystem::directory_iterator(folder), {});
}

TEST(HttpProbes, AreOneHoweverManyAreAskedFor) {
  WebSite site;
  HttpProbes probes(0ms);
  EXPECT_EQ(probes.resume(site.page()), Probes::TaskState::Running);
  ASSERT_TRUE(QTest::qWaitFor([&] { return site.heard.endsWith("\r\n\r\n"); }));
  const auto descriptors = entriesOf("/proc/self/fd");
  const auto held = mallinfo2().uordblks;  // bytes
  constexpr int kThreads = 4;
  const auto begin = Clock::now();
  {
    std::vector<std::jthread> threads;
    for (int i = 0; i < kThreads; ++i) {
      threads.emplace_back([&] {
        for (int n = 0; n < 10000 / kThreads; ++n) probes.resume(site.page());
      });
    }
  }
  const std::chrono::duration<double, std::micro> spent = Clock::now() - begin;
  QTest::qWait(200);
  EXPECT_EQ(site.sockets.size(), 1U);
  EXPECT_EQ(entriesOf("/proc/self/fd"), descriptors);
  const auto growth = static_cast<long>(mallinfo2().uordblks) - static_cast<long>(held);
  EXPECT_LT(growth, 64 * 1024);
  std::printf("  10000 requests: %ld bytes more, %.2f us each\n", growth, spent.count() / 10000);

  site.sockets[0]->abort();
  ASSERT_TRUE(QTest::qWaitFor([&] {
    probes.resume(site.page());
    return site.sockets.size() == 2;
  }));
}

TEST(HttpProbes, KeepNothingFollowNothingAndTakeTheirTime) {
  WebSite site;
  site.answer =
      "HTTP/1.1 302 Found\r\nLocation: /elsewhere\r\nSet-Cookie: a=b\r\n"
      "Content-Length: 1000000000\r\n\r\n" +
      QByteArray(100000, 'x');
  HttpProbes probes(300ms);
  const auto begin = Clock::now();
  std::size_t wanted = 0;
  for (const char* host : {"127.0.0.1", "localhost"}) {
    ASSERT_TRUE(QTest::qWaitFor([&] {
      probes.resume(site.page(host));
      QTest::qWait(5);
      return site.sockets.size() > wanted;
    }));
    ++wanted;
    ASSERT_TRUE(QTest::qWaitFor(
        [&] { return site.sockets.back()->state() == QAbstractSocket::UnconnectedState; }));
  }
  EXPECT_GE(Clock::now() - begin, 290ms);
  EXPECT_EQ(site.heard.count("GET / HTTP/1.1\r\n"), 2) << site.heard.data();
  EXPECT_EQ(site.heard.count("GET"), 2);
  EXPECT_EQ(site.heard.count("Cookie"), 0);
  EXPECT_EQ(site.heard.count(
                "Host: " + QByteArray::fromStdString(site.page("localhost").url).mid(7).chopped(1) +
                "\r\n"),
            1)
      << site.heard.data();
}

TEST(HttpProbes, GiveUpAfterTheTimeAndAtTheEnd) {
  WebSite site;
  auto probes = std::make_unique<HttpProbes>(0ms);
  ProbeRequest impatient = site.page();
  impatient.timeoutInterval = 0.2;
  const auto begin = Clock::now();
  for (std::size_t count = 1; count <= 3; ++count) {
    ASSERT_TRUE(QTest::qWaitFor([&] {
      probes->resume(impatient);
      return site.sockets.size() == count;
    }));
  }
  EXPECT_GE(Clock::now() - begin, 350ms);  // the timer is a coarse one
  const auto end = Clock::now();
  probes.reset();
  EXPECT_LT(Clock::now() - end, 1s);
  EXPECT_TRUE(QTest::qWaitFor(
      [&] { return site.sockets.back()->state() == QAbstractSocket::UnconnectedState; }));
}

TEST(HttpProbes, DoNotWaitForANameServerThatHangs) {
  auto probes = std::make_unique<HttpProbes>(0ms);
  probes->resume({.url = "http://hung.invalid/"});
  ASSERT_TRUE(nameServerAsked.try_acquire_for(5s));
  const auto end = Clock::now();
  probes.reset();
  EXPECT_LT(Clock::now() - end, 1s);
  nameServerAnswers.release();  // too late for anybody
  QTest::qWait(20);
}

TEST(ThreadQueues, KeepTheOrderStepBackAndEndWithWhatRuns) {
  auto queues = std::make_unique<ThreadQueues>();
  std::atomic<int> niceness = 0;
  queues->dispatchAsync(kWorkPriorityBackground,
                        [&] { niceness = getpriority(PRIO_PROCESS, static_cast<id_t>(gettid())); });
  std::vector<int> order;
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
  EXPECT_EQ(niceness, getpriority(PRIO_PROCESS, 0) + 10);
  EXPECT_EQ(order.size(), 101U);
  EXPECT_TRUE(std::is_sorted(order.begin(), order.end()));
}

// In a network of its own, which is a thread's private matter.
TEST(RouteReachability, FollowsTheRoutingTable) {
  RouteReachability reachability;
  const auto anywhere = [&] { return reachability.flagsForAddress({}).value_or(99); };
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
    const auto begin = Clock::now();
    for (int i = 0; i < 1000; ++i) static_cast<void>(anywhere());
    std::printf("  %.1f us a question\n",
                std::chrono::duration<double, std::micro>(Clock::now() - begin).count() / 1000);
    close(control);
  }).join();
  if (!allowed) GTEST_SKIP() << "no network of its own without privileges";
}

// Without windows there is no desktop that opens anything; the test then takes its place.
TEST(DesktopUrlOpener, OpensThePageInTheSoftwareCentreOrSaysSo) {
  QGuiApplication::setDesktopFileName("io.endpin.Endpin");
  fakes::FakeLog log;
  DesktopUrlOpener opener(log);
  opener.openUrl("itms-apps://store.invalid/app/id0");
  EXPECT_EQ(log.lines, std::vector<std::string>{"Nothing opens appstream:io.endpin.Endpin"});

  SoftwareCentre centre;
  QDesktopServices::setUrlHandler("appstream", &centre, "open");
  opener.openUrl("itms-apps://store.invalid/app/id0");
  QDesktopServices::unsetUrlHandler("appstream");
  EXPECT_EQ(centre.opened, QUrl("appstream:io.endpin.Endpin"));
  EXPECT_EQ(log.lines.size(), 1U);
}

}  // namespace
}  // namespace endpin

#include "RatingAdaptersTest.moc"
