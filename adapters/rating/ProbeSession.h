// One probe after the other, on a thread with an event loop. Made on any thread and moved there;
// everything else happens on that one.
#pragma once

#include <QElapsedTimer>
#include <QNetworkAccessManager>
#include <QNetworkRequest>
#include <QObject>
#include <chrono>
#include <functional>
#include <memory>
#include <optional>

#include "adapters/rating/NameLookup.h"
#include "ports/Network.h"

namespace endpin {

class ProbeSession final : public QObject {
 public:
  // `ended` tells the end of each probe, `shortest` after its beginning at the earliest.
  ProbeSession(std::chrono::milliseconds shortest, std::function<void()> ended)
      : shortest_(shortest), ended_(std::move(ended)) {}

  // Not before the probe before has ended.
  void begin(const ProbeRequest& request);

 private:
  void send(QNetworkRequest request);
  void end();

  const std::chrono::milliseconds shortest_;
  const std::function<void()> ended_;
  QElapsedTimer sinceBegin_;
  std::optional<NameLookup> lookup_;
  std::unique_ptr<QNetworkAccessManager> network_;
};

}  // namespace endpin
