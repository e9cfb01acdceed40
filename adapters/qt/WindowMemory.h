// Remembers the size, the place and the state of a desktop's window in the settings, from one start
// to the next. Thread: main.
//
// Keys: windowX, windowY, windowWidth, windowHeight (points, without the frame), windowMaximised,
// windowFullScreen. A first launch forgets them with everything else.
#pragma once

#include <QRect>
#include <QTimer>
#include <QWindow>

#include "ports/SettingsStore.h"

namespace endpin {

class WindowMemory final : public QObject {
 public:
  // `window` is not shown yet; both outlive the memory.
  WindowMemory(QWindow& window, SettingsStore& settings);
  ~WindowMemory() override;

  // Gives the window the size and the place of last time, maximises it if it was, and says whether
  // it filled the screen. Without a memory nothing happens. A size that is larger than the screen
  // is cut to it; a place at which the window could not be seen or moved is the desktop's to choose
  // again.
  bool restore();

 private:
  bool eventFilter(QObject* window, QEvent* event) override;
  void remember();

  QWindow& window_;
  SettingsStore& settings_;
  QTimer settled_;  // the state follows the size, or the other way round
};

}  // namespace endpin
