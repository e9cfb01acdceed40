// Tells when the application comes back to the front: its window was minimised or hidden, or the
// application suspended, and no longer is. To lose and regain the keyboard is not that.
// Thread: main.
#pragma once

#include <QObject>
#include <functional>

class QWindow;

namespace endpin {

class ForegroundWatch {
 public:
  // For a window that is shown. `window` outlives the watch.
  ForegroundWatch(QWindow& window, std::function<void()> entered);

 private:
  void look();

  QWindow& window_;
  std::function<void()> entered_;
  bool inFront_ = true;
  QObject connections_;
};

}  // namespace endpin
