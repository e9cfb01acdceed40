// Whoever wants to know what becomes of the prompt. Fill in the messages that matter and leave the
// others empty: an empty one is not sent. All are sent on the main thread.
#pragma once

#include <functional>
#include <variant>

namespace endpin {

class RatingPrompt;

// Stands for the prompt's class where a message comes from the class and not from its instance.
struct RatingPromptClass {};

using RatingPromptSender = std::variant<RatingPrompt*, RatingPromptClass>;

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
