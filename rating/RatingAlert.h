// What the alert says and what it is presented from. Called by the rating prompt. Thread: main.
#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string>

#include "ports/Bundle.h"
#include "ports/ScreenWindows.h"

namespace endpin {

// The user's language first, the keys themselves where there is no translation, and in front of
// both whatever the application sets.
class AlertTexts {
 public:
  static constexpr const char* kTable = "RatingPromptLocalizable";

  enum Name : std::size_t { Title, Message, Cancel, Rate, RateLater, kCount };

  // Replaces a text as it stands; std::nullopt brings the default back.
  void setText(Name name, std::optional<std::string> text) { replaced_[name] = std::move(text); }

  // The replacement, or the default: looked up in `texts`, with the application's name from
  // `mainBundle` where the text has a place for it.
  [[nodiscard]] std::string text(Name name, const Bundle& texts, const Bundle& mainBundle) const;

 private:
  std::array<std::optional<std::string>, kCount> replaced_;
};

// The controller on top of the first one found in the key window or, when that lies above the
// normal level, in the first window of the normal level. Null when there is none.
[[nodiscard]] ScreenController* getRootViewController(const ScreenWindows& screen);

// The controller on top of the first one that a subview of `view` belongs to, depth first.
[[nodiscard]] ScreenController* iterateSubViewsForViewController(const ScreenView& view);

// The end of the chain of controllers presented over `controller`.
[[nodiscard]] ScreenController* topMostViewController(ScreenController& controller);

}  // namespace endpin
