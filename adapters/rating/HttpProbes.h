// Probes of the network as requests over HTTP. One is in flight at a time, however often it is
// asked for, and for a while at least: a web site that answers at once is asked no more often than
// one that never does. What comes back is cut off at its beginning, unseen. Each probe has a
// session of its own, without cookies, cache or connections of the one before.
//
// resume is for any thread and never waits: all the work is on a thread of the probes' own. Made
// and destroyed on the main thread, within the life of the application object; its end calls off
// the probe in flight.
#pragma once

#include <QThread>
#include <atomic>
#include <chrono>

#include "ports/Network.h"

namespace endpin {

class ProbeSession;

class HttpProbes final : public Probes {
 public:
  static constexpr std::chrono::milliseconds kShortestFlight{20000};

  explicit HttpProbes(std::chrono::milliseconds shortestFlight = kShortestFlight);
  ~HttpProbes() override;
  HttpProbes(const HttpProbes&) = delete;
  HttpProbes& operator=(const HttpProbes&) = delete;

  TaskState resume(const ProbeRequest& request) override;

 private:
  std::atomic<bool> inFlight_ = false;
  QThread thread_;
  ProbeSession* session_;  // goes with the thread
};

}  // namespace endpin
