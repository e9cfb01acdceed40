// Whether asking for a rating makes sense: without a network the store cannot be reached.
#pragma once

#include "ports/Log.h"
#include "ports/Network.h"

namespace endpin {

// Asks for the way to the network and starts a probe, which nobody waits for. False when there is
// no way, or none without dialling first. Does not wait.
// Thread: any.
[[nodiscard]] bool connectedToNetwork(Reachability& reachability, Probes& probes, Log& log);

}  // namespace endpin
