// Asks the user to rate the application, at most once a version: counts how long and how often it
// is used, judges whether this is the moment, shows the platform's review request or an alert, and
// carries out the answer.
//
// The application shell configures it and reports launches, returns to the foreground and
// significant events; the main screen tries to show it. The counting runs on the background queue
// and on the prompt's own serial queue, everything that is seen on the main thread. Nothing is
// reported: without a network, a window or a kind of alert nothing is shown.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "ports/RatingPlatform.h"
#include "rating/RatingAlert.h"
#include "rating/RatingSettings.h"
#include "rating/UsageTracker.h"

namespace endpin {

class RatingPrompt : public std::enable_shared_from_this<RatingPrompt> {
 public:
  // The alert shown last, until it is answered.
  using RatingAlert =
      std::variant<std::monostate, std::shared_ptr<ModernAlert>, std::shared_ptr<LegacyAlert>>;

  // --- The shared instance.

  // Names the platform for the instance to come. Once, before everything else. Thread: any.
  static void usePlatform(const RatingPlatform& platform);

  // The single instance, made on first use; null while no platform is named. Thread: any.
  static std::shared_ptr<RatingPrompt> sharedInstance();

  // Ends the single instance: waits for its own queue, drops what that has not begun, and forgets
  // platform and settings, as at the start of the process. What other queues still hold of it does
  // nothing any more. The platform may go as soon as its background queue has ended.
  // Thread: main.
  static void releaseSharedInstance();

  RatingPrompt(const RatingPrompt&) = delete;
  RatingPrompt& operator=(const RatingPrompt&) = delete;
  ~RatingPrompt();

  // --- Settings of the process, see RatingSettings. Thread: any.

  static void setAppId(std::string appId) { set(&RatingSettings::appId, std::move(appId)); }
  static void setDaysUntilPrompt(double days) { set(&RatingSettings::daysUntilPrompt, days); }
  static void setUsesUntilPrompt(std::int64_t uses) { set(&RatingSettings::usesUntilPrompt, uses); }
  static void setSignificantEventsUntilPrompt(std::int64_t events) {
    set(&RatingSettings::significantEventsUntilPrompt, events);
  }
  static void setTimeBeforeReminding(double days) {
    set(&RatingSettings::timeBeforeReminding, days);
  }
  static void setDebug(bool debug) { set(&RatingSettings::debug, debug); }
  static void setUsesAnimation(bool animation) { set(&RatingSettings::usesAnimation, animation); }
  static void setModalOpen(bool open) { set(&RatingSettings::modalOpen, open); }
  static void setAlwaysUseMainBundle(bool always) {
    set(&RatingSettings::alwaysUseMainBundle, always);
  }
  static RatingSettings settings();

  // Does nothing, whatever the style: the status bar belongs to the application.
  static void setStatusBarStyle(int /*style*/) {}

  // --- Settings of the instance. They have no effect while no platform is named. Thread: main.

  static void setOpenInAppStore(bool openInAppStore);
  static void setDelegate(const std::weak_ptr<RatingPromptDelegate>& delegate);
  static void setCustomAlertTitle(std::optional<std::string> title);
  static void setCustomAlertMessage(std::optional<std::string> message);
  static void setCustomAlertCancelButtonTitle(std::optional<std::string> title);
  static void setCustomAlertRateButtonTitle(std::optional<std::string> title);
  static void setCustomAlertRateLaterButtonTitle(std::optional<std::string> title);

  // --- What the application reports and asks for. Thread: main. The first three return at once.

  static void appLaunched(bool canPromptForRating = true);
  static void appEnteredForeground(bool canPromptForRating);
  static void userDidSignificantEvent(bool canPromptForRating);
  static void tryToShowPrompt();
  static void showPrompt() { tryToShowPrompt(); }
  static void forceShowPrompt(bool displayRateLaterButton);
  static void appWillResignActive();

  // Goes to rate the application, by the first way that the platform has. Thread: main.
  static void rateApp();
  // Closes the store sheet if it is open. Thread: main.
  static void closeModal();

  // --- Counting and judging. Thread: any.

  void incrementUseCount() { tracker_.incrementUseCount(settings().debug); }
  void incrementSignificantEventCount() {
    tracker_.incrementSignificantEventCount(settings().debug);
  }
  void incrementAndRate(bool canPromptForRating);
  void incrementSignificantEventAndRate(bool canPromptForRating);

  // Used long and often enough; whether it is proper to ask comes on top.
  [[nodiscard]] bool ratingConditionsHaveBeenMet() const;
  // A network, no answer for this version yet, no alert on the screen. Starts a probe.
  [[nodiscard]] bool ratingAlertIsAppropriate() const;

  [[nodiscard]] bool userHasDeclinedToRate() const { return tracker_.userHasDeclinedToRate(); }
  [[nodiscard]] bool userHasRatedCurrentVersion() const {
    return tracker_.userHasRatedCurrentVersion();
  }
  [[nodiscard]] bool connectedToNetwork() const;
  [[nodiscard]] bool isRatingAlertVisible() const;
  [[nodiscard]] RatingAlert ratingAlert() const;

  // --- Showing. Thread: main.

  // Deliberately regardless of ratingConditionsHaveBeenMet.
  void showPromptWithChecks(bool withChecks, bool displayRateLaterButton);
  void showRatingAlert(bool displayRateLaterButton = true);
  void hideRatingAlert();

  // Carries out an answer: 0 declines, 1 rates, 2 asks to be reminded, any other is no answer.
  void alertViewDidDismissWithButtonIndex(std::int64_t buttonIndex);
  void alertView(LegacyAlert& alertView, std::int64_t didDismissWithButtonIndex);
  void productViewControllerDidFinish();

  // The texts now in force. Thread: main.
  [[nodiscard]] std::string alertTitle() const { return text(AlertTexts::Title); }
  [[nodiscard]] std::string alertMessage() const { return text(AlertTexts::Message); }
  [[nodiscard]] std::string alertCancelTitle() const { return text(AlertTexts::Cancel); }
  [[nodiscard]] std::string alertRateTitle() const { return text(AlertTexts::Rate); }
  [[nodiscard]] std::string alertRateLaterTitle() const { return text(AlertTexts::RateLater); }

  // The bundle with the texts of the alert. Thread: main.
  [[nodiscard]] const Bundle& bundle() const;

  bool openInAppStore;  // the store's own page instead of a sheet inside the application

 private:
  enum ButtonIndex : std::int64_t { kNone = -1, kCancel = 0, kRate = 1, kRemindLater = 2 };
  struct Process;

  explicit RatingPrompt(const RatingPlatform& platform);

  static Process& process();
  static std::optional<RatingPlatform> platformInUse();
  template <class Field, class Value>
  static void set(Field RatingSettings::*field, Value&& value) {
    changeSettings([&](RatingSettings& all) { all.*field = std::forward<Value>(value); });
  }
  static void changeSettings(const std::function<void(RatingSettings&)>& change);
  static void setCustomText(AlertTexts::Name name, std::optional<std::string> text);

  void rateAfterLaunch(bool canPromptForRating);
  void rateIfItIsTime(bool canPromptForRating);
  void queueRatingAlert();

  [[nodiscard]] std::string text(AlertTexts::Name name) const;
  [[nodiscard]] std::vector<std::string> buttonTitles(bool displayRateLaterButton) const;
  [[nodiscard]] ButtonIndex buttonIndex(std::string_view title) const;
  void showModernAlert(std::vector<std::string> titles);
  void showLegacyAlert(const std::vector<std::string>& titles);
  void setRatingAlert(RatingAlert alert);

  void openStore();
  void presentStoreSheet();
  void dismissStoreSheet();

  // Sends a message if there is a delegate that answers to it.
  template <class Message, class... Arguments>
  void tell(Message RatingPromptDelegate::*message, Arguments&&... arguments) const {
    const auto delegate = delegate_.lock();
    if (delegate && (*delegate).*message) ((*delegate).*message)(arguments...);
  }

  RatingPlatform platform_;
  UsageTracker tracker_;
  AlertTexts texts_;
  std::weak_ptr<RatingPromptDelegate> delegate_;

  mutable std::mutex ratingAlertLock_;  // the queues ask for the alert that the main thread sets
  RatingAlert ratingAlert_;

  std::unique_ptr<OperationQueue> eventQueue_;  // returns to the foreground and events, in order
  ApplicationNotifications::ObserverId resignObserver_ = 0;
};

// The main screen's own reason to ask: the longer somebody uses the application, the more often.
// Reads "numberOfRuns" into `runCount`, which the caller keeps for the process, and tries to show
// the prompt once for each of 3, 5, 7 and 9 runs that it reaches. Called after each choice of a
// preset and, once all strings are in tune, up to ten times a second for hours.
// Thread: main.
void promptToReview(const SettingsStore& settings, std::int64_t& runCount);

}  // namespace endpin
