// Finds the controller that an alert or a sheet is presented from. Thread: main.
#pragma once

#include "ports/ScreenWindows.h"

namespace endpin {

// The controller on top of the first one found in the key window or, when that lies above the
// normal level, in the first window of the normal level. Null when there is none.
[[nodiscard]] ScreenController* getRootViewController(const ScreenWindows& screen);

// The controller on top of the first one that a subview of `view` belongs to, depth first.
[[nodiscard]] ScreenController* iterateSubViewsForViewController(const ScreenView& view);

// The end of the chain of controllers presented over `controller`.
[[nodiscard]] ScreenController* topMostViewController(ScreenController& controller);

}  // namespace endpin
