#include "rating/PromptToReview.h"

#include "rating/RatingPrompt.h"

namespace endpin {

void promptToReview(const SettingsStore& settings, std::int64_t& runCount) {
  runCount = settings.integerForKey("numberOfRuns");
  for (const std::int64_t runs : {3, 5, 7, 9}) {
    if (runCount >= runs) RatingPrompt::tryToShowPrompt();
  }
}

}  // namespace endpin
