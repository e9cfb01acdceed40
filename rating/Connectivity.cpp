#include "rating/Connectivity.h"

#include "rating/StoreConfiguration.h"

namespace endpin {
namespace {

constexpr std::uint32_t kReachableMask = kReachabilityReachable | kReachabilityConnectionRequired;

bool hasWay(std::uint32_t flags) {
  return (flags & kReachableMask) == kReachabilityReachable ||
         (flags & kReachabilityTransientConnection) != 0;
}

}  // namespace

// The probe goes out even when there is no way: it may wake the network up for the next time.
bool connectedToNetwork(Reachability& reachability, Probes& probes, Log& log) {
  const auto flags = reachability.flagsForAddress(SocketAddress{});
  if (!flags) {
    log.line("Error. Could not recover network reachability flags");
    return false;
  }
  const auto state = probes.resume(ProbeRequest{.url = kProbeUrl});
  return hasWay(*flags) && state != Probes::TaskState::Suspended;
}

}  // namespace endpin
