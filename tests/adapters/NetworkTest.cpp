// What the application asks of the network, on a web site of the test's own; nothing leaves the
// machine. The program is made twice: as it is, and without the network (ENDPIN_NETWORK=OFF).
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <poll.h>
#include <sched.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <thread>

#include "adapters/posix/SystemNetwork.h"

namespace endpin {
namespace {

using namespace std::chrono_literals;
constexpr bool kSends = ENDPIN_NETWORK;

// Hears visitors one after the other, and answers nothing.
struct Site {
  Site() {
    sockaddr_in place{};
    place.sin_family = AF_INET;
    place.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    bind(listener, reinterpret_cast<sockaddr*>(&place), sizeof place);
    listen(listener, 8);
    socklen_t size = sizeof place;
    getsockname(listener, reinterpret_cast<sockaddr*>(&place), &size);
    authority = "127.0.0.1:" + std::to_string(ntohs(place.sin_port));
  }
  ~Site() { close(listener); }

  // All that the next visitor says until it leaves; "" when none comes in time.
  [[nodiscard]] std::string nextVisitor(std::chrono::milliseconds time) const {
    pollfd coming{listener, POLLIN, 0};
    if (poll(&coming, 1, static_cast<int>(time.count())) != 1) return "";
    const int visitor = accept(listener, nullptr, nullptr);
    std::string said;
    char part[256];
    for (ssize_t size = 0; (size = read(visitor, part, sizeof part)) > 0;) {
      said.append(part, static_cast<std::size_t>(size));
    }
    close(visitor);
    return said;
  }

  const int listener = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  std::string authority;
};

TEST(SystemNetwork, SendsOnePlainRequestARunWhereItMay) {
  const struct {
    const char *scheme, *page, *path;
    bool allowed, sends;
  } rows[] = {
      {"http", "", "/", true, kSends},
      {"http", "/sign?of=life", "/sign?of=life", true, kSends},
      {"http", "/", "/", false, false},
      {"https", "/", "/", true, false},
  };
  for (const auto& row : rows) {
    const Site site;
    SystemNetwork network(row.allowed, "Endpin/1.2.3");
    const ProbeRequest request{.url = row.scheme + ("://" + site.authority) + row.page,
                               .timeoutInterval = 0.1};
    const auto askOften = [&] {
      for (int i = 0; i < 20; ++i) {
        EXPECT_EQ(network.resume(request) == Probes::TaskState::Running, row.allowed && kSends);
      }
    };
    std::jthread other(askOften);
    askOften();
    const std::string plain = "GET " + std::string(row.path) +
                              " HTTP/1.1\r\nHost: " + site.authority +
                              "\r\nUser-Agent: Endpin/1.2.3\r\nConnection: close\r\n\r\n";
    EXPECT_EQ(site.nextVisitor(row.sends ? 5s : 100ms), row.sends ? plain : "");
    askOften();
    EXPECT_EQ(site.nextVisitor(50ms), "") << "a second one";
  }
}

// The site never answers.
TEST(SystemNetwork, WaitsForNobody) {
  const Site site;
  const auto begin = std::chrono::steady_clock::now();
  {
    SystemNetwork network(true, "");
    network.resume({.url = "http://" + site.authority, .timeoutInterval = 30});
  }
  EXPECT_LT(std::chrono::steady_clock::now() - begin, 1s);
}

// In a network of its own, which is a thread's private matter.
TEST(SystemNetwork, HasAWayWhenTheRoutingTableSaysSo) {
  SystemNetwork network(true, ""), switchedOff(false, "");
  const auto anywhere = [&] { return network.flagsForAddress({}); };
  const auto here = [&] { return network.flagsForAddress({.address = 0x7F000001}); };
  const std::uint32_t reachable = kSends ? kReachabilityReachable : 0;
  EXPECT_EQ(here(), reachable);
  EXPECT_EQ(switchedOff.flagsForAddress({.address = 0x7F000001}), 0U);
  bool allowed = false;
  std::thread([&] {
    allowed = unshare(CLONE_NEWNET) == 0;
    if (!allowed) return;
    EXPECT_EQ(anywhere(), 0U);
    EXPECT_EQ(std::system("ip link set lo up"), 0);
    EXPECT_EQ(here(), reachable);
    EXPECT_EQ(anywhere(), 0U);
    EXPECT_EQ(std::system("ip route add default dev lo"), 0);
    EXPECT_EQ(anywhere(), reachable);
  }).join();
  if (!allowed) GTEST_SKIP() << "no network of its own without privileges";
}

}  // namespace
}  // namespace endpin
