// What the application gives the rating prompt: how eagerly it asks, where the application is sold,
// and who wants to know what becomes of it.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <variant>

namespace endpin {

// Where the application is sold: facts of the build, set when it is configured.
inline constexpr const char* kStoreId = ENDPIN_STORE_ID;  // a decimal number
inline constexpr const char* kStoreReviewHost = ENDPIN_STORE_REVIEW_HOST;
inline constexpr const char* kStoreHost = ENDPIN_STORE_HOST;
inline constexpr const char* kProbeUrl = ENDPIN_PROBE_URL;

// One set for the whole process, see RatingPrompt's class setters. Days are 86400 seconds.
struct RatingSettings {
  std::optional<std::string> appId;                // the application's number in the store
  double daysUntilPrompt = 30;                     // since the first use of this version
  std::int64_t usesUntilPrompt = 20;               // launches and returns to the foreground
  std::int64_t significantEventsUntilPrompt = -1;  // negative: none are needed
  double timeBeforeReminding = 1;                  // days since the user asked to be reminded
  bool debug = false;                              // asks whatever the conditions say, and logs
  bool usesAnimation = true;                       // of the store sheet
  bool modalOpen = false;                          // the store sheet is on the screen
  bool alwaysUseMainBundle = false;                // for the texts of the alert
};

class RatingPrompt;

// Stands for the prompt's class where a message comes from the class and not from its instance.
struct RatingPromptClass {};

using RatingPromptSender = std::variant<RatingPrompt*, RatingPromptClass>;

// Fill in the messages that matter and leave the others empty: an empty one is not sent. All are
// sent on the main thread.
struct RatingPromptDelegate {
  using Message = std::function<void(RatingPrompt& sender)>;
  using ModalMessage = std::function<void(RatingPromptSender sender, bool animated)>;

  // Returning false keeps the prompt from showing.
  std::function<bool(RatingPrompt& sender)> ratingPromptShouldDisplayAlert;
  Message ratingPromptDidDisplayAlert;
  Message ratingPromptDidDeclineToRate;
  Message ratingPromptDidOptToRate;
  Message ratingPromptDidOptToRemindLater;
  ModalMessage ratingPromptWillPresentModalView;  // sent by the instance
  ModalMessage ratingPromptDidDismissModalView;   // sent by the class
};

}  // namespace endpin
