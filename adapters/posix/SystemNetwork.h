// The network, as far as the rating prompt wants to know of it: whether the system has a way there,
// and the one request that the application ever sends, which asks a public web page for nothing but
// a sign of life.
//
// The routing table says whether there is a way: a datagram socket is connected, which sends
// nothing and takes a few microseconds. The request runs on a thread that nobody waits for and that
// ends with the process at the latest: a name server that does not answer holds a look-up for half
// a minute, and the toolkit's own would hold up the end of the application that long.
//
// A build without the network (ENDPIN_NETWORK=OFF) has no code that sends. One object a process.
// Thread: any. Neither call waits.
#pragma once

#include <atomic>
#include <string>

#include "ports/Network.h"

namespace endpin {

class SystemNetwork final : public Reachability, public Probes {
 public:
  // Where it is not `allowed`, there is no network and nothing is sent. `userAgent` is how the
  // request introduces itself: "Endpin/1.1.0".
  SystemNetwork(bool allowed, std::string userAgent);

  // Reachable or 0; nothing when the system has no socket left or refuses the question. The address
  // is in the machine's own byte order.
  [[nodiscard]] std::optional<std::uint32_t> flagsForAddress(const SocketAddress& address) override;

  // Sends the first request that it is asked for, and no other. Only http is spoken: an address of
  // another scheme is not visited. What comes back is left unread.
  TaskState resume(const ProbeRequest& request) override;

 private:
  const bool allowed_;
  const std::string userAgent_;
  std::atomic<bool> sent_ = false;
};

}  // namespace endpin
