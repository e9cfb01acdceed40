// The alert: showing it, hiding it, and what its buttons do.
#include "rating/RatingPrompt.h"

namespace endpin {

void RatingPrompt::showPromptWithChecks(bool withChecks, bool displayRateLaterButton) {
  if (withChecks && !ratingAlertIsAppropriate()) return;
  showRatingAlert(displayRateLaterButton);
}

void RatingPrompt::showRatingAlert(bool displayRateLaterButton) {
  const auto delegate = delegate_.lock();
  if (delegate && delegate->ratingPromptShouldDisplayAlert &&
      !delegate->ratingPromptShouldDisplayAlert(*this)) {
    return;
  }
  if (platform_.reviewRequest) {
    rateApp();
  } else if (platform_.modernAlerts) {
    showModernAlert(buttonTitles(displayRateLaterButton));
  } else if (platform_.legacyAlerts) {
    showLegacyAlert(buttonTitles(displayRateLaterButton));
  }
  tell(&RatingPromptDelegate::ratingPromptDidDisplayAlert, *this);
}

std::vector<std::string> RatingPrompt::buttonTitles(bool displayRateLaterButton) const {
  std::vector<std::string> titles{alertRateTitle()};
  if (displayRateLaterButton) titles.push_back(alertRateLaterTitle());
  return titles;
}

// The cancel button comes last here, and first in the legacy alert.
void RatingPrompt::showModernAlert(std::vector<std::string> titles) {
  titles.push_back(alertCancelTitle());
  const auto alert =
      platform_.modernAlerts->newAlert(alertTitle(), alertMessage(), AlertControllerStyle::Alert);
  for (const std::string& title : titles) {
    const bool last = &title == &titles.back();
    alert->addAction(title, last ? AlertActionStyle::Cancel : AlertActionStyle::Default,
                     [asking = weak_from_this()](std::string_view pressed) {
                       const auto prompt = asking.lock();
                       if (!prompt) return;
                       prompt->alertViewDidDismissWithButtonIndex(prompt->buttonIndex(pressed));
                     });
  }
  if (auto* presenter = getRootViewController(platform_.windows)) {
    presenter->presentViewController(alert, true, {});
  }
  setRatingAlert(alert);
}

void RatingPrompt::showLegacyAlert(const std::vector<std::string>& titles) {
  const auto alert = platform_.legacyAlerts->newAlert(
      alertTitle(), alertMessage(),
      [asking = weak_from_this()](LegacyAlert& dismissed, std::int64_t index) {
        if (const auto prompt = asking.lock()) prompt->alertView(dismissed, index);
      },
      alertCancelTitle());
  for (const std::string& title : titles) alert->addButtonWithTitle(title);
  setRatingAlert(alert);
  alert->show();
}

// Titles may be alike; the first in this order counts.
RatingPrompt::ButtonIndex RatingPrompt::buttonIndex(std::string_view title) const {
  if (title == alertCancelTitle()) return kCancel;
  if (title == alertRateTitle()) return kRate;
  if (title == alertRateLaterTitle()) return kRemindLater;
  return kNone;
}

void RatingPrompt::alertView(LegacyAlert& /*alertView*/, std::int64_t didDismissWithButtonIndex) {
  alertViewDidDismissWithButtonIndex(didDismissWithButtonIndex);
}

void RatingPrompt::alertViewDidDismissWithButtonIndex(std::int64_t buttonIndex) {
  switch (buttonIndex) {
    case kRemindLater:
      tracker_.recordReminderRequest();
      tell(&RatingPromptDelegate::ratingPromptDidOptToRemindLater, *this);
      break;
    case kRate:
      rateApp();
      tell(&RatingPromptDelegate::ratingPromptDidOptToRate, *this);
      break;
    case kCancel:
      tracker_.recordDeclined();
      tell(&RatingPromptDelegate::ratingPromptDidDeclineToRate, *this);
      break;
    default:
      break;
  }
  setRatingAlert({});
}

RatingPrompt::RatingAlert RatingPrompt::ratingAlert() const {
  const std::lock_guard lock(ratingAlertLock_);
  return ratingAlert_;
}

// The alert before goes outside the lock: its end is the platform's business.
void RatingPrompt::setRatingAlert(RatingAlert alert) {
  const std::lock_guard lock(ratingAlertLock_);
  ratingAlert_.swap(alert);
}

bool RatingPrompt::isRatingAlertVisible() const {
  const RatingAlert shown = ratingAlert();
  if (const auto* modern = std::get_if<std::shared_ptr<ModernAlert>>(&shown)) {
    return (*modern)->viewHasSuperview();
  }
  const auto* legacy = std::get_if<std::shared_ptr<LegacyAlert>>(&shown);
  return legacy && (*legacy)->isVisible();
}

// No answer either way: -1 is none of the buttons, and a controller that is dismissed runs none of
// its handlers.
void RatingPrompt::hideRatingAlert() {
  if (!isRatingAlertVisible()) return;
  if (settings().debug) platform_.log.line("RATINGPROMPT Hiding Alert");
  const RatingAlert shown = ratingAlert();
  if (const auto* legacy = std::get_if<std::shared_ptr<LegacyAlert>>(&shown)) {
    (*legacy)->dismissWithClickedButtonIndex(kNone, false);
  } else if (const auto* modern = std::get_if<std::shared_ptr<ModernAlert>>(&shown)) {
    (*modern)->dismissViewController(false, {});
  }
}

void RatingPrompt::appWillResignActive() {
  const auto prompt = sharedInstance();
  if (!prompt) return;
  if (settings().debug) prompt->platform_.log.line("RATINGPROMPT appWillResignActive");
  prompt->hideRatingAlert();
}

const Bundle& RatingPrompt::bundle() const {
  if (settings().alwaysUseMainBundle || !platform_.resourceBundles) return platform_.mainBundle;
  const Bundle* own = platform_.resourceBundles->bundleForResource("RatingPrompt", "bundle");
  return own ? *own : platform_.mainBundle;
}

std::string RatingPrompt::text(AlertTexts::Name name) const {
  return texts_.text(name, bundle(), platform_.mainBundle);
}

}  // namespace endpin
