#include "rating/PresenterSearch.h"

namespace endpin {
namespace {

bool isNormal(const ScreenWindow* window) {
  return window && window->windowLevel() == ScreenWindow::kNormalLevel;
}

const ScreenWindow* windowToSearch(const ScreenWindows& screen) {
  if (const ScreenWindow* key = screen.keyWindow(); isNormal(key)) return key;
  for (const ScreenWindow* window : screen.windows()) {
    if (isNormal(window)) return window;
  }
  return nullptr;
}

}  // namespace

ScreenController* getRootViewController(const ScreenWindows& screen) {
  const ScreenWindow* window = windowToSearch(screen);
  return window ? iterateSubViewsForViewController(*window) : nullptr;
}

ScreenController* iterateSubViewsForViewController(const ScreenView& view) {
  for (const ScreenView* subview : view.subviews()) {
    if (auto* controller = subview->nextResponderViewController()) {
      return topMostViewController(*controller);
    }
    if (auto* found = iterateSubViewsForViewController(*subview)) return found;
  }
  return nullptr;
}

ScreenController* topMostViewController(ScreenController& controller) {
  ScreenController* top = &controller;
  while (ScreenController* above = top->presentedViewController()) top = above;
  return top;
}

}  // namespace endpin
