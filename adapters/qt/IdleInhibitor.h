// Keeps the desktop from blanking and locking the screen, by asking its screen saver service on the
// session bus. A desktop without such a service costs one line in the log and nothing else.
//
// Thread: main. Never waits for the service; the request ends with the process at the latest.
#pragma once

#include <QObject>
#include <optional>

#include "ports/Log.h"

namespace endpin {

class IdleInhibitor {
 public:
  // `log` outlives the inhibitor.
  explicit IdleInhibitor(Log& log) : log_(log) {}
  ~IdleInhibitor() { setInhibited(false); }
  IdleInhibitor(const IdleInhibitor&) = delete;
  IdleInhibitor& operator=(const IdleInhibitor&) = delete;

  void setInhibited(bool inhibited);

 private:
  void request();
  void release();

  Log& log_;
  bool wanted_ = false;
  bool asked_ = false;            // a request is on its way
  std::optional<unsigned> held_;  // the service's number of our request
  QObject replies_;               // answers that come after the inhibitor has gone are dropped
};

}  // namespace endpin
