// Whether there is a way to the network, and a request that nobody waits for. Called by the rating
// prompt, up to forty times a second for hours. Thread: any, several at a time. Neither call waits.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace endpin {

// Bits of the reachability flags.
inline constexpr std::uint32_t kReachabilityTransientConnection = 1;
inline constexpr std::uint32_t kReachabilityReachable = 2;
inline constexpr std::uint32_t kReachabilityConnectionRequired = 4;

struct SocketAddress {
  std::uint8_t length = 16;  // bytes
  std::uint8_t family = 2;   // internet, version 4
  std::uint32_t address = 0;
};

class Reachability {
 public:
  virtual ~Reachability() = default;

  // The flags of the way to `address`; the all-zero address asks for any way at all. Nothing when
  // they cannot be read, which the caller logs each time.
  [[nodiscard]] virtual std::optional<std::uint32_t> flagsForAddress(
      const SocketAddress& address) = 0;
};

struct ProbeRequest {
  static constexpr int kReloadIgnoringLocalCacheData = 1;

  std::string url;
  int cachePolicy = kReloadIgnoringLocalCacheData;
  double timeoutInterval = 20;  // seconds without data after which the request fails
};

class Probes {
 public:
  enum class TaskState : int { Running = 0, Suspended = 1, Canceling = 2, Completed = 3 };

  virtual ~Probes() = default;

  // Starts a request in a session that keeps nothing, and tells the state of its task. What comes
  // back is thrown away unseen. A platform may send fewer than it is asked for, as one a run: the
  // state is then that of the one that was sent. Suspended says that none is sent at all.
  virtual TaskState resume(const ProbeRequest& request) = 0;
};

}  // namespace endpin
