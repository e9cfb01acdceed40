// Turns SIGINT and SIGTERM into an orderly end of the event loop.
#pragma once

#include <QSocketNotifier>
#include <memory>

namespace endpin {

// Both signals are kept for QuitSignals from now on, in every thread started later: call it first
// in main. A signal that comes before the event loop runs ends it as soon as it does.
void holdQuitSignals();

// Thread: main, after the application object.
class QuitSignals {
 public:
  QuitSignals();
  ~QuitSignals();
  QuitSignals(const QuitSignals&) = delete;
  QuitSignals& operator=(const QuitSignals&) = delete;

 private:
  int descriptor_;
  std::unique_ptr<QSocketNotifier> notifier_;
};

}  // namespace endpin
