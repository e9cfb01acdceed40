// Whether the system has a way to the network, as its routing table says. Asks by connecting a
// datagram socket, which sends nothing and takes a few microseconds. Thread: any.
#pragma once

#include "ports/Network.h"

namespace endpin {

class RouteReachability final : public Reachability {
 public:
  // Reachable or 0, and always an answer: a system that refuses the question has no way for us. The
  // address is in the machine's own byte order.
  [[nodiscard]] std::optional<std::uint32_t> flagsForAddress(const SocketAddress& address) override;
};

}  // namespace endpin
