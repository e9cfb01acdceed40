// A platform for the rating prompt: the test sets what it answers and reads what it was told. Time
// passes only through advance. What the prompt may use on several threads is locked.
#pragma once

#include <gtest/gtest.h>

#include "rating/RatingPrompt.h"
#include "tests/fakes/FakePlatform.h"

namespace endpin::fakes {

// What can present and be presented.
struct Shown {
  std::atomic<bool> onScreen = false;
  bool animated = false;
};

template <class Base>
struct Fake : Base, Shown {
  using Completion = ScreenController::Completion;
  ScreenController* presentedViewController() const override {
    const auto* shown = dynamic_cast<const Shown*>(presented.get());
    return shown && shown->onScreen ? presented.get() : nullptr;
  }
  void presentViewController(std::shared_ptr<ScreenController> controller, bool withAnimation,
                             Completion completion) override {
    auto& shown = dynamic_cast<Shown&>(*controller);
    shown.onScreen = true;
    shown.animated = withAnimation;
    presented = controller;
    if (completion) completion();
  }
  void dismissViewController(bool withAnimation, Completion completion) override {
    onScreen = false;
    animated = withAnimation;
    if (completion) completion();
  }
  std::shared_ptr<ScreenController> presented;
};

using Strings = std::vector<std::string>;

// An alert of either generation.
struct FakeAlert final : Fake<ModernAlert>, LegacyAlert {
  void addAction(const std::string& title, AlertActionStyle style, Handler handler) override {
    buttons += style == AlertActionStyle::Cancel ? "(" + title + ")" : "[" + title + "]";
    handlers.push_back([handler = std::move(handler), title] { handler(title); });
  }
  bool viewHasSuperview() const override { return onScreen; }
  void addButtonWithTitle(const std::string& title) override { buttons += "[" + title + "]"; }
  void show() override { onScreen = true; }
  void dismissWithClickedButtonIndex(std::int64_t index, bool) override {
    onScreen = false;
    didDismiss(*this, index);
  }
  bool isVisible() const override { return onScreen; }
  void press(std::size_t button) {
    if (didDismiss) return dismissWithClickedButtonIndex(static_cast<std::int64_t>(button), true);
    onScreen = false;
    handlers.at(button)();
  }
  std::string text, buttons;  // TITLE|MESSAGE, [TITLE], (TITLE) for the cancel button
  std::vector<std::function<void()>> handlers;
  DidDismiss didDismiss;
};

struct FakeSheet final : Fake<StoreSheet> {
  void loadProduct(std::int64_t identifier) override { product = identifier; }
  void onFinish(std::function<void()> call) override { finished = std::move(call); }
  std::int64_t product = 0;
  std::function<void()> finished;
};

struct FakeWindow final : ScreenWindow {
  FakeWindow(std::vector<ScreenView*> inside = {}, ScreenController* responder = nullptr,
             double height = 0)
      : views(std::move(inside)), controller(responder), level(height) {}
  std::vector<ScreenView*> subviews() const override { return views; }
  ScreenController* nextResponderViewController() const override { return controller; }
  double windowLevel() const override { return level; }
  ScreenController* rootViewController() const override { return controller; }
  const std::vector<ScreenView*> views;
  ScreenController* const controller;
  const double level;
};

// All the small ports at once, and a world with one window.
struct FakeRatingPlatform : Clock,
                            WorkQueues,
                            Reachability,
                            Probes,
                            ApplicationNotifications,
                            ResourceBundles,
                            ScreenWindows,
                            UrlOpener,
                            ReviewRequest,
                            StoreSheets,
                            ModernAlerts,
                            LegacyAlerts {
  using Action = std::function<void()>;
  struct Operations final : OperationQueue {
    explicit Operations(std::deque<Action>& all) : work(all) {}
    void setMaxConcurrentOperationCount(int count) override { EXPECT_EQ(count, 1); }
    void addOperation(Action operation) override { work.push_back(std::move(operation)); }
    std::deque<Action>& work;
  };

  FakeRatingPlatform() { bundle.info = {{"CFBundleVersion", "1.0"}, {"CFBundleName", "Endpin"}}; }
  FakeRatingPlatform(const FakeRatingPlatform&) = delete;
  ~FakeRatingPlatform() override { RatingPrompt::releaseSharedInstance(); }

  double secondsSince1970() const override { return now; }
  void dispatchAsync(int priority, Action call) override {
    EXPECT_EQ(priority, -2);
    work.push_back(std::move(call));
  }
  std::unique_ptr<OperationQueue> newOperationQueue() override {
    return std::make_unique<Operations>(work);
  }
  std::optional<std::uint32_t> flagsForAddress(const SocketAddress& address) override {
    return address.length == 16 && address.family == 2 && !address.address ? flags : std::nullopt;
  }
  TaskState resume(const ProbeRequest& request) override {
    EXPECT_TRUE(request.cachePolicy == 1 && request.timeoutInterval == 20 &&
                request.url.starts_with("http:"));
    ++probes;
    return probeState;
  }
  ObserverId addWillResignActiveObserver(Action call) override {
    resign = std::move(call);
    return 7;
  }
  void removeObserver(ObserverId observer) override {
    if (observer == 7) resign = nullptr;
  }
  const Bundle* bundleForResource(std::string_view name, std::string_view ext) override {
    return name == "RatingPrompt" && ext == "bundle" ? ownBundle : nullptr;
  }
  ScreenWindow* keyWindow() const override { return key; }
  std::vector<ScreenWindow*> windows() const override { return allWindows; }
  void openUrl(const std::string& url) override { urls.push_back(url); }
  void requestReview() override { ++reviews; }
  std::shared_ptr<StoreSheet> newSheet() override { return sheet = std::make_shared<FakeSheet>(); }
  std::shared_ptr<ModernAlert> newAlert(const std::string& title, const std::string& message,
                                        AlertControllerStyle style) override {
    EXPECT_EQ(static_cast<int>(style), 1);
    EXPECT_EQ(std::this_thread::get_id(), mainThread);
    ++alertsMade;
    alert = std::make_shared<FakeAlert>();
    alert->text = title + "|" + message;
    return alert;
  }
  std::shared_ptr<LegacyAlert> newAlert(const std::string& title, const std::string& message,
                                        LegacyAlert::DidDismiss call,
                                        const std::string& cancel) override {
    static_cast<void>(newAlert(title, message, AlertControllerStyle::Alert));
    alert->didDismiss = std::move(call);
    alert->buttons = "(" + cancel + ")";
    return alert;
  }

  // Lets the background work first, then the main thread, up to `seconds` from now.
  void advance(double seconds) {
    for (; !work.empty(); work.pop_front()) work.front()();
    mainQueue.advance(seconds);
    now = now + seconds;
  }

  // A new prompt on this platform, with the ways of showing it that the test wants.
  enum Ways { kModern = 1, kLegacy = 2, kReview = 4, kSheet = 8 };
  void use(int ways) {
    RatingPrompt::releaseSharedInstance();
    const auto way = [&](Ways wanted) { return ways & wanted ? this : nullptr; };
    RatingPrompt::usePlatform({.clock = *this,
                               .workQueues = queues ? *queues : *this,
                               .mainQueue = mainQueue,
                               .settings = store,
                               .reachability = *this,
                               .probes = *this,
                               .mainBundle = bundle,
                               .log = log,
                               .device = device,
                               .notifications = *this,
                               .windows = *this,
                               .urlOpener = *this,
                               .resourceBundles = this,
                               .reviewRequest = way(kReview),
                               .storeSheets = way(kSheet),
                               .modernAlerts = way(kModern),
                               .legacyAlerts = way(kLegacy)});
    RatingPrompt::setAppId("4711");
  }
  RatingPrompt& prompt() { return *RatingPrompt::sharedInstance(); }
  // What the answer left in the store, for good.
  std::string noted() const {
    EXPECT_EQ(store.unsynchronized, 0);
    if (store.doubleForKey(UsageTracker::kReminderRequestDate) != 0) return "reminder";
    if (store.boolForKey(UsageTracker::kRatedCurrentVersion)) return "rated";
    return store.boolForKey(UsageTracker::kDeclinedToRate) ? "declined" : "";
  }

  std::atomic<double> now = 1.7e9;  // seconds
  std::deque<Action> work;
  VirtualRunLoop mainQueue;
  WorkQueues* queues = nullptr;  // others than the two above
  const std::thread::id mainThread = std::this_thread::get_id();
  std::optional<std::uint32_t> flags = kReachabilityReachable;
  TaskState probeState = TaskState::Running;
  FakeSettings store;
  FakeDevice device;
  FakeBundle bundle;
  const Bundle* ownBundle = nullptr;
  FakeLog log;
  Strings urls;
  Action resign;
  Fake<ScreenController> root;
  FakeWindow view{{}, &root}, window{{&view}, &root};
  ScreenWindow* key = &window;
  std::vector<ScreenWindow*> allWindows;
  std::atomic<int> probes = 0;
  int reviews = 0, alertsMade = 0;
  std::shared_ptr<FakeAlert> alert;
  std::shared_ptr<FakeSheet> sheet;
};

}  // namespace endpin::fakes
