#include "adapters/rating/HttpProbes.h"

#include "adapters/rating/ProbeSession.h"

namespace endpin {

HttpProbes::HttpProbes(std::chrono::milliseconds shortestFlight)
    : session_(new ProbeSession(shortestFlight, [this] { inFlight_ = false; })) {
  session_->moveToThread(&thread_);
  QObject::connect(&thread_, &QThread::finished, session_, &QObject::deleteLater);
  thread_.start();
}

HttpProbes::~HttpProbes() {
  thread_.quit();
  thread_.wait();
}

Probes::TaskState HttpProbes::resume(const ProbeRequest& request) {
  if (!inFlight_.exchange(true)) {
    QMetaObject::invokeMethod(
        session_, [session = session_, request] { session->begin(request); }, Qt::QueuedConnection);
  }
  return TaskState::Running;
}

}  // namespace endpin
