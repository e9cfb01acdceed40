// The shared instance, its settings, counting and judging.
#include "rating/RatingPrompt.h"

#include "ports/TypedStore.h"

namespace endpin {
namespace {

constexpr std::uint32_t kReachableMask = kReachabilityReachable | kReachabilityConnectionRequired;

bool hasWay(std::uint32_t flags) {
  return (flags & kReachableMask) == kReachabilityReachable ||
         (flags & kReachabilityTransientConnection) != 0;
}

}  // namespace

// What the class itself keeps. Never destroyed: work in the background may ask for it until the
// process is gone.
struct RatingPrompt::Process {
  std::mutex instanceLock;
  std::optional<RatingPlatform> platform;
  std::shared_ptr<RatingPrompt> instance;

  std::mutex settingsLock;
  RatingSettings settings;
};

RatingPrompt::Process& RatingPrompt::process() {
  static auto& only = *new Process;
  return only;
}

void RatingPrompt::usePlatform(const RatingPlatform& platform) {
  const std::lock_guard lock(process().instanceLock);
  process().platform.emplace(platform);
}

std::optional<RatingPlatform> RatingPrompt::platformInUse() {
  const std::lock_guard lock(process().instanceLock);
  return process().platform;
}

std::shared_ptr<RatingPrompt> RatingPrompt::sharedInstance() {
  const std::lock_guard lock(process().instanceLock);
  if (!process().instance && process().platform) {
    process().instance.reset(new RatingPrompt(*process().platform));
  }
  return process().instance;
}

// The queue ends outside the lock, which its last operation may want.
void RatingPrompt::releaseSharedInstance() {
  std::shared_ptr<RatingPrompt> ending;
  {
    const std::lock_guard lock(process().instanceLock);
    ending = std::exchange(process().instance, nullptr);
    process().platform.reset();
  }
  if (ending) ending->eventQueue_.reset();
  changeSettings([](RatingSettings& settings) { settings = {}; });
}

RatingPrompt::RatingPrompt(const RatingPlatform& platform)
    : openInAppStore(leadingNumber<float>(platform.device.systemVersion()) >= 7.0F),
      platform_(platform),
      tracker_({platform.settings, platform.mainBundle, platform.clock, platform.log}),
      eventQueue_(platform.workQueues.newOperationQueue()) {
  eventQueue_->setMaxConcurrentOperationCount(1);
  resignObserver_ = platform.notifications.addWillResignActiveObserver(&appWillResignActive);
}

RatingPrompt::~RatingPrompt() {
  platform_.notifications.removeObserver(resignObserver_);
}

RatingSettings RatingPrompt::settings() {
  const std::lock_guard lock(process().settingsLock);
  return process().settings;
}

void RatingPrompt::changeSettings(const std::function<void(RatingSettings&)>& change) {
  const std::lock_guard lock(process().settingsLock);
  change(process().settings);
}

void RatingPrompt::setOpenInAppStore(bool openInAppStore) {
  if (const auto prompt = sharedInstance()) prompt->openInAppStore = openInAppStore;
}

void RatingPrompt::setDelegate(const std::weak_ptr<RatingPromptDelegate>& delegate) {
  if (const auto prompt = sharedInstance()) prompt->delegate_ = delegate;
}

void RatingPrompt::setCustomText(AlertTexts::Name name, std::optional<std::string> text) {
  if (const auto prompt = sharedInstance()) prompt->texts_.setText(name, std::move(text));
}

void RatingPrompt::setCustomAlertTitle(std::optional<std::string> title) {
  setCustomText(AlertTexts::Title, std::move(title));
}

void RatingPrompt::setCustomAlertMessage(std::optional<std::string> message) {
  setCustomText(AlertTexts::Message, std::move(message));
}

void RatingPrompt::setCustomAlertCancelButtonTitle(std::optional<std::string> title) {
  setCustomText(AlertTexts::Cancel, std::move(title));
}

void RatingPrompt::setCustomAlertRateButtonTitle(std::optional<std::string> title) {
  setCustomText(AlertTexts::Rate, std::move(title));
}

void RatingPrompt::setCustomAlertRateLaterButtonTitle(std::optional<std::string> title) {
  setCustomText(AlertTexts::RateLater, std::move(title));
}

void RatingPrompt::appLaunched(bool canPromptForRating) {
  const auto platform = platformInUse();
  if (!platform) return;
  platform->workQueues.dispatchAsync(kWorkPriorityBackground, [canPromptForRating] {
    if (const auto prompt = sharedInstance()) prompt->rateAfterLaunch(canPromptForRating);
  });
}

void RatingPrompt::appEnteredForeground(bool canPromptForRating) {
  const auto prompt = sharedInstance();
  if (!prompt) return;
  prompt->eventQueue_->addOperation([canPromptForRating] {
    if (const auto counting = sharedInstance()) counting->incrementAndRate(canPromptForRating);
  });
}

void RatingPrompt::userDidSignificantEvent(bool canPromptForRating) {
  const auto prompt = sharedInstance();
  if (!prompt) return;
  prompt->eventQueue_->addOperation([canPromptForRating] {
    if (const auto counting = sharedInstance()) {
      counting->incrementSignificantEventAndRate(canPromptForRating);
    }
  });
}

void RatingPrompt::tryToShowPrompt() {
  if (const auto prompt = sharedInstance()) prompt->showPromptWithChecks(true, true);
}

void RatingPrompt::forceShowPrompt(bool displayRateLaterButton) {
  if (const auto prompt = sharedInstance()) {
    prompt->showPromptWithChecks(false, displayRateLaterButton);
  }
}

void RatingPrompt::rateAfterLaunch(bool canPromptForRating) {
  if (settings().debug) {
    queueRatingAlert();
  } else {
    incrementAndRate(canPromptForRating);
  }
}

void RatingPrompt::incrementAndRate(bool canPromptForRating) {
  incrementUseCount();
  rateIfItIsTime(canPromptForRating);
}

void RatingPrompt::incrementSignificantEventAndRate(bool canPromptForRating) {
  incrementSignificantEventCount();
  rateIfItIsTime(canPromptForRating);
}

void RatingPrompt::rateIfItIsTime(bool canPromptForRating) {
  if (canPromptForRating && ratingConditionsHaveBeenMet() && ratingAlertIsAppropriate()) {
    queueRatingAlert();
  }
}

// The main queue may outlive the instance.
void RatingPrompt::queueRatingAlert() {
  platform_.mainQueue.dispatchAsync([waiting = weak_from_this()] {
    if (const auto prompt = waiting.lock()) prompt->showRatingAlert();
  });
}

bool RatingPrompt::ratingConditionsHaveBeenMet() const {
  return tracker_.conditionsHaveBeenMet(settings());
}

bool RatingPrompt::ratingAlertIsAppropriate() const {
  return connectedToNetwork() && !userHasDeclinedToRate() && !isRatingAlertVisible() &&
         !userHasRatedCurrentVersion();
}

// The probe goes out even when there is no way: it may wake the network up for the next time.
bool RatingPrompt::connectedToNetwork() const {
  const auto flags = platform_.reachability.flagsForAddress(SocketAddress{});
  if (!flags) {
    platform_.log.line("Error. Could not recover network reachability flags");
    return false;
  }
  const auto state = platform_.probes.resume(ProbeRequest{.url = kProbeUrl});
  return hasWay(*flags) && state != Probes::TaskState::Suspended;
}

void promptToReview(const SettingsStore& settings, std::int64_t& runCount) {
  runCount = settings.integerForKey("numberOfRuns");
  for (const std::int64_t runs : {3, 5, 7, 9}) {
    if (runCount >= runs) RatingPrompt::tryToShowPrompt();
  }
}

}  // namespace endpin
