// The main screen's own reason to ask: the longer somebody uses the application, the more often.
#pragma once

#include <cstdint>

#include "ports/SettingsStore.h"

namespace endpin {

// Reads "numberOfRuns" into `runCount`, which the caller keeps for the process, and tries to show
// the prompt once for each of 3, 5, 7 and 9 runs that it reaches. Called after each choice of a
// preset and, once all strings are in tune, up to ten times a second for hours.
// Thread: main.
void promptToReview(const SettingsStore& settings, std::int64_t& runCount);

}  // namespace endpin
