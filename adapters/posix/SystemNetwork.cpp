#include "adapters/posix/SystemNetwork.h"

#include <netdb.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <string_view>
#include <system_error>
#include <thread>
#include <utility>

namespace endpin {
namespace {

// Addresses that are set aside for documents: no network has a way of its own to them, so that they
// stand for the world outside.
constexpr std::uint32_t kSomewhere = 0xCB007101;  // 203.0.113.1
constexpr in6_addr kSomewhere6 = {{{0x20, 0x01, 0x0D, 0xB8, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1}}};
constexpr in_port_t kDiscardPort = 9;

// Nothing when the system does not tell.
using Answer = std::optional<bool>;

bool saysNoWay(int error) {
  return error == ENETUNREACH || error == EHOSTUNREACH || error == EADDRNOTAVAIL ||
         error == ENETDOWN || error == EAFNOSUPPORT;
}

Answer hasRoute(int family, const void* address, socklen_t size) {
  const int descriptor = socket(family, SOCK_DGRAM | SOCK_CLOEXEC, 0);
  const bool found =
      descriptor >= 0 && connect(descriptor, static_cast<const sockaddr*>(address), size) == 0;
  const int error = errno;
  if (descriptor >= 0) close(descriptor);
  if (found) return true;
  return saysNoWay(error) ? Answer(false) : Answer();
}

Answer hasRouteTo(std::uint32_t address) {
  sockaddr_in target{};
  target.sin_family = AF_INET;
  target.sin_port = htons(kDiscardPort);
  target.sin_addr.s_addr = htonl(address);
  return hasRoute(AF_INET, &target, sizeof target);
}

Answer hasRouteTo(const in6_addr& address) {
  sockaddr_in6 target{};
  target.sin6_family = AF_INET6;
  target.sin6_port = htons(kDiscardPort);
  target.sin6_addr = address;
  return hasRoute(AF_INET6, &target, sizeof target);
}

Answer hasRouteAnywhere() {
  const Answer oldWay = hasRouteTo(kSomewhere);
  if (oldWay.value_or(false)) return oldWay;
  const Answer newWay = hasRouteTo(kSomewhere6);
  return newWay.value_or(false) || !oldWay ? newWay : oldWay;
}

#if ENDPIN_NETWORK

struct Page {
  std::string host, port, authority, path;
};

std::optional<Page> pageAt(std::string_view url) {
  constexpr std::string_view kScheme = "http://";
  if (!url.starts_with(kScheme)) return {};
  url.remove_prefix(kScheme.size());
  const std::string_view authority = url.substr(0, url.find('/'));
  const std::string_view path = url.substr(authority.size());
  const auto colon = authority.find(':');
  return Page{.host = std::string(authority.substr(0, colon)),
              .port = colon == url.npos ? "80" : std::string(authority.substr(colon + 1)),
              .authority = std::string(authority),
              .path = path.empty() ? "/" : std::string(path)};
}

// Sends `request` there and waits for the beginning of an answer, so that the other side is not cut
// off. False when nobody is there.
bool visit(const addrinfo& there, const std::string& request, const timeval& timeout) {
  const int descriptor =
      socket(there.ai_family, there.ai_socktype | SOCK_CLOEXEC, there.ai_protocol);
  if (descriptor < 0) return false;
  for (const int direction : {SO_SNDTIMEO, SO_RCVTIMEO}) {
    setsockopt(descriptor, SOL_SOCKET, direction, &timeout, sizeof timeout);
  }
  const bool reached = connect(descriptor, there.ai_addr, there.ai_addrlen) == 0;
  char unread = 0;
  if (reached && send(descriptor, request.data(), request.size(), MSG_NOSIGNAL) > 0) {
    static_cast<void>(recv(descriptor, &unread, 1, 0));
  }
  close(descriptor);
  return reached;
}

void visit(const Page& page, const std::string& userAgent, double timeoutInterval) {
  const std::string request = "GET " + page.path + " HTTP/1.1\r\nHost: " + page.authority +
                              "\r\nUser-Agent: " + userAgent + "\r\nConnection: close\r\n\r\n";
  const auto microseconds = static_cast<std::int64_t>(timeoutInterval * 1e6);
  const timeval timeout{microseconds / 1'000'000, microseconds % 1'000'000};
  addrinfo wanted{};
  wanted.ai_socktype = SOCK_STREAM;
  wanted.ai_flags = AI_ADDRCONFIG;
  addrinfo* addresses = nullptr;
  if (getaddrinfo(page.host.c_str(), page.port.c_str(), &wanted, &addresses) != 0) return;
  const addrinfo* next = addresses;
  while (next && !visit(*next, request, timeout)) next = next->ai_next;
  freeaddrinfo(addresses);
}

void begin(const ProbeRequest& request, const std::string& userAgent) {
  const auto page = pageAt(request.url);
  if (!page) return;
  try {
    std::thread([page = *page, userAgent, seconds = request.timeoutInterval] {
      visit(page, userAgent, seconds);
    }).detach();
  } catch (const std::system_error&) {  // no thread is left: the request goes unsent
  }
}

#else

void begin(const ProbeRequest& /*request*/, const std::string& /*userAgent*/) {}

#endif

}  // namespace

SystemNetwork::SystemNetwork(bool allowed, std::string userAgent)
    : allowed_(allowed && ENDPIN_NETWORK), userAgent_(std::move(userAgent)) {}

std::optional<std::uint32_t> SystemNetwork::flagsForAddress(const SocketAddress& address) {
  if (!allowed_) return 0;
  const Answer found = address.address != 0 ? hasRouteTo(address.address) : hasRouteAnywhere();
  if (!found) return {};
  return *found ? kReachabilityReachable : 0;
}

Probes::TaskState SystemNetwork::resume(const ProbeRequest& request) {
  if (!allowed_) return TaskState::Suspended;
  if (!sent_.exchange(true)) begin(request, userAgent_);
  return TaskState::Running;
}

}  // namespace endpin
