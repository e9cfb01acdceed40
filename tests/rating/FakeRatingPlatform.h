// A platform for the rating prompt: the test sets what it answers and reads what it was told. Time
// passes only through advance. What the prompt may use on several threads is locked.
#pragma once

#include <gtest/gtest.h>

#include <atomic>
#include <deque>
#include <map>
#include <thread>

#include "rating/RatingPrompt.h"

namespace endpin::fakes {

using Entries = std::map<std::string, std::variant<double, std::string>, std::less<>>;
using Texts = std::map<std::string, std::string, std::less<>>;

struct FakeStore final : SettingsStore {
  std::int64_t integerForKey(std::string_view key) const override {
    return static_cast<std::int64_t>(doubleForKey(key));
  }
  bool boolForKey(std::string_view key) const override { return doubleForKey(key) != 0; }
  double doubleForKey(std::string_view key) const override { return get<double>(key).value_or(0); }
  std::optional<std::string> stringForKey(std::string_view key) const override {
    return get<std::string>(key);
  }
  void setInteger(std::string_view k, std::int64_t v) override { put(k, static_cast<double>(v)); }
  void setBool(std::string_view key, bool value) override { put(key, value ? 1.0 : 0.0); }
  void setDouble(std::string_view key, double value) override { put(key, value); }
  void setString(std::string_view k, std::string_view v) override { put(k, std::string(v)); }
  void removeAll() override { values.clear(); }
  void synchronize() override {
    const std::lock_guard guard(lock);
    durable = values;
  }

  mutable std::mutex lock;
  Entries values, durable;
  int clearAfterWrites = 0;  // another writer clears the store after that many

 private:
  template <class T>
  std::optional<T> get(std::string_view key) const {
    const std::lock_guard guard(lock);
    const auto found = values.find(key);
    return found == values.end() ? std::nullopt : std::optional(std::get<T>(found->second));
  }
  void put(std::string_view key, Entries::mapped_type value) {
    const std::lock_guard guard(lock);
    values.insert_or_assign(std::string(key), std::move(value));
    if (--clearAfterWrites == 0) values.clear();
  }
};

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
    presented = std::move(controller);
    if (completion) completion();
  }
  void dismissViewController(bool withAnimation, Completion completion) override {
    onScreen = false;
    animated = withAnimation;
    if (completion) completion();
  }
  std::shared_ptr<ScreenController> presented;
};

struct Buttons {
  virtual ~Buttons() = default;
  virtual void press(std::size_t button) = 0;
  std::string text;  // TITLE|MESSAGE
  std::vector<std::string> buttons;
  std::vector<int> styles;
};

struct FakeAlert final : Fake<ModernAlert>, Buttons {
  void addAction(const std::string& title, AlertActionStyle style, Handler handler) override {
    buttons.push_back(title);
    styles.push_back(static_cast<int>(style));
    handlers.push_back(std::move(handler));
  }
  bool viewHasSuperview() const override { return onScreen; }
  void press(std::size_t button) override {
    dismissViewController(true, {});
    handlers.at(button)(buttons.at(button));
  }
  std::vector<Handler> handlers;
};

struct FakeLegacyAlert final : LegacyAlert, Buttons {
  void addButtonWithTitle(const std::string& button) override { buttons.push_back(button); }
  void show() override { visible = true; }
  void dismissWithClickedButtonIndex(std::int64_t index, bool) override {
    visible = false;
    didDismiss(*this, dismissedWith = index);
  }
  bool isVisible() const override { return visible; }
  void press(std::size_t button) override {
    dismissWithClickedButtonIndex(static_cast<std::int64_t>(button), true);
  }
  DidDismiss didDismiss;
  std::atomic<bool> visible = false;
  std::int64_t dismissedWith = 99;
};

struct FakeSheet final : Fake<StoreSheet> {
  void loadProduct(std::int64_t identifier) override { product = identifier; }
  void onFinish(std::function<void()> call) override { finished = std::move(call); }
  std::int64_t product = 0;
  std::function<void()> finished;
};

struct FakeWindow final : ScreenWindow {
  std::vector<ScreenView*> subviews() const override { return views; }
  ScreenController* nextResponderViewController() const override { return controller; }
  double windowLevel() const override { return level; }
  ScreenController* rootViewController() const override { return controller; }
  std::vector<ScreenView*> views;
  ScreenController* controller = nullptr;
  double level = 0;
};

struct FakeBundle final : Bundle {
  using Text = std::optional<std::string>;
  std::string resourcePath() const override { return {}; }
  std::string localizedString(std::string_view key, std::string_view value,
                              std::string_view table) const override {
    if (table != "RatingPromptLocalizable" || !value.empty()) return "wrong table or default";
    return find(texts, key).value_or(std::string(key));
  }
  Text infoValue(std::string_view key) const override { return find(info, key); }
  Text localizedInfoValue(std::string_view key) const override { return find(localized, key); }
  static Text find(const Texts& table, std::string_view key) {
    const auto found = table.find(key);
    return found == table.end() ? std::nullopt : Text(found->second);
  }
  Texts texts, info{{"CFBundleVersion", "1.0"}, {"CFBundleName", "Endpin"}}, localized;
};

// All the small ports at once, and a world with one window.
struct FakeRatingPlatform : Clock,
                            WorkQueues,
                            RunLoop,
                            Reachability,
                            Probes,
                            Log,
                            Device,
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

  FakeRatingPlatform() {
    window.views = {&view};
    view.controller = window.controller = &root;
  }
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
  TimerId scheduleTimer(double, Action) override { return 0; }
  void performAfterDelay(double seconds, Action call) override {
    const std::lock_guard guard(lock);
    main.emplace(now + seconds, std::move(call));
  }
  void dispatchAsync(Action call) override { performAfterDelay(0, std::move(call)); }
  std::optional<std::uint32_t> flagsForAddress(const SocketAddress& address) override {
    return address.length == 16 && address.family == 2 && !address.address ? flags : std::nullopt;
  }
  TaskState resume(const ProbeRequest& request) override {
    EXPECT_TRUE(request.cachePolicy == 1 && request.timeoutInterval == 20 &&
                request.url.starts_with("http:"));
    ++probes;
    return probeState;
  }
  void line(std::string_view text) override {
    const std::lock_guard guard(lock);
    log.emplace_back(text);
  }
  std::optional<int> userInterfaceIdiom() const override { return 0; }
  double screenHeight() const override { return 0; }
  std::string systemVersion() const override { return version; }
  void setIdleTimerDisabled(bool) override {}
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
    legacy = std::make_shared<FakeLegacyAlert>();
    legacy->text = title + "|" + message;
    legacy->didDismiss = std::move(call);
    legacy->buttons = {cancel};
    return legacy;
  }

  // Lets the background work first, then the main thread, up to `seconds` from now.
  void advance(double seconds) {
    for (; !work.empty(); work.pop_front()) work.front()();
    const double end = now + seconds;
    while (true) {
      std::unique_lock guard(lock);
      if (main.empty() || main.begin()->first > end) break;
      const auto due = main.extract(main.begin());
      now = std::max<double>(now, due.key());
      guard.unlock();
      due.mapped()();
    }
    now = end;
  }

  // A new prompt on this platform, with the ways of showing it that the test wants, and set up as
  // the application does it.
  enum Ways { kModern = 1, kLegacy = 2, kReview = 4, kSheet = 8 };
  void name(int ways) {
    RatingPrompt::releaseSharedInstance();
    RatingPrompt::usePlatform({*this, queues ? *queues : *this, *this, store, *this, *this, bundle,
                               *this, *this, *this, *this, *this, *this,
                               ways & kReview ? this : nullptr, ways & kSheet ? this : nullptr,
                               ways & kModern ? this : nullptr, ways & kLegacy ? this : nullptr});
  }
  void use(int ways) {
    name(ways);
    RatingPrompt::setAppId("4711");
    RatingPrompt::setDaysUntilPrompt(4);
    RatingPrompt::setUsesUntilPrompt(7);
    RatingPrompt::setTimeBeforeReminding(3);
    RatingPrompt::setOpenInAppStore(true);
  }
  RatingPrompt& prompt() { return *RatingPrompt::sharedInstance(); }

  std::mutex lock;
  std::atomic<double> now = 1.7e9;  // seconds
  std::deque<Action> work;
  std::multimap<double, Action> main;
  WorkQueues* queues = nullptr;  // others than the two above
  const std::thread::id mainThread = std::this_thread::get_id();
  std::optional<std::uint32_t> flags = kReachabilityReachable;
  TaskState probeState = TaskState::Running;
  FakeStore store;
  FakeBundle bundle;
  const Bundle* ownBundle = nullptr;
  std::vector<std::string> log, urls;
  std::string version = "9.0";
  Action resign;
  Fake<ScreenController> root;
  FakeWindow view, window;
  ScreenWindow* key = &window;
  std::vector<ScreenWindow*> allWindows;
  std::atomic<int> probes = 0;
  int reviews = 0, alertsMade = 0;
  std::shared_ptr<FakeAlert> alert;
  std::shared_ptr<FakeLegacyAlert> legacy;
  std::shared_ptr<FakeSheet> sheet;
};

}  // namespace endpin::fakes
