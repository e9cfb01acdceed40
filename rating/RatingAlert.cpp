#include "rating/RatingAlert.h"

#include <string_view>

namespace endpin {
namespace {

struct DefaultText {
  const char* key;
  bool namesApplication = false;
};

// In the order of AlertTexts::Name. The rate button says the same as the title, on purpose.
constexpr std::array<DefaultText, AlertTexts::kCount> kDefaults{{
    {"Rate %@", true},
    {"If you enjoy using %@, would you mind taking a moment to rate it? It won't take more than a "
     "minute. Thanks for your support!",
     true},
    {"No, Thanks"},
    {"Rate %@", true},
    {"Remind me later"},
}};

// Puts `name` in each place marked %@; %% is a percent sign.
std::string format(std::string_view pattern, std::string_view name) {
  std::string result;
  for (std::size_t i = 0; i < pattern.size(); ++i) {
    const std::string_view pair = pattern.substr(i, 2);
    if (pair == "%@") result += name;
    if (pair == "%%") result += '%';
    if (pair == "%@" || pair == "%%") {
      ++i;
    } else {
      result += pattern[i];
    }
  }
  return result;
}

// The name that the user knows the application by; empty when the bundle does not tell.
std::string applicationName(const Bundle& mainBundle) {
  if (auto name = mainBundle.localizedInfoValue("CFBundleDisplayName")) return *name;
  if (auto name = mainBundle.infoValue("CFBundleDisplayName")) return *name;
  return mainBundle.infoValue("CFBundleName").value_or("");
}

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

std::string AlertTexts::text(Name name, const Bundle& texts, const Bundle& mainBundle) const {
  if (replaced_[name]) return *replaced_[name];
  const DefaultText& wanted = kDefaults[name];
  const std::string localized = texts.localizedString(wanted.key, "", kTable);
  return wanted.namesApplication ? format(localized, applicationName(mainBundle)) : localized;
}

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
