// The words of the alert: the user's language first, the keys themselves where there is no
// translation, and in front of both whatever the application sets. Called by the rating prompt.
// Thread: main.
#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string>

#include "ports/Bundle.h"

namespace endpin {

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

// The name that the user knows the application by; empty when the bundle does not tell.
[[nodiscard]] std::string applicationName(const Bundle& mainBundle);

}  // namespace endpin
