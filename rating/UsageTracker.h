// What the rating prompt remembers about the version in use, in the settings store: since when and
// how often it has been used, and what the user answered. A new version starts a new page.
//
// Called by the rating prompt. Thread: any. An increment is one step for other increments, but not
// for other writers of the store: if the store is cleared in its midst, what was written before is
// gone and the next increment begins anew with what is missing.
#pragma once

#include <cstdint>
#include <mutex>
#include <string>

#include "ports/RatingPlatform.h"
#include "rating/RatingSettings.h"

namespace endpin {

class UsageTracker {
 public:
  static constexpr const char* kCurrentVersion = "kRatingPromptCurrentVersion";  // string
  static constexpr const char* kFirstUseDate =
      "kRatingPromptFirstUseDate";  // s since 1970; 0 unset
  static constexpr const char* kUseCount = "kRatingPromptUseCount";
  static constexpr const char* kSignificantEventCount = "kRatingPromptSignificantEventCount";
  static constexpr const char* kRatedCurrentVersion = "kRatingPromptRatedCurrentVersion";
  static constexpr const char* kDeclinedToRate = "kRatingPromptDeclinedToRate";
  static constexpr const char* kReminderRequestDate =
      "kRatingPromptReminderRequestDate";  // 0 never

  // They outlive the book.
  struct Ports {
    SettingsStore& settings;
    const Bundle& mainBundle;
    const Clock& clock;
    Log& log;
  };

  explicit UsageTracker(const Ports& ports) : ports_(ports) {}

  // One more launch or return to the foreground; one more significant event. In debug mode the
  // tracked version and the new count are logged.
  void incrementUseCount(bool debug);
  void incrementSignificantEventCount(bool debug);

  // Whether this version has been used long and often enough, and the user's wish to be reminded
  // is old enough. A date in the future, as after a clock was set back, is not.
  [[nodiscard]] bool conditionsHaveBeenMet(const RatingSettings& settings) const;

  [[nodiscard]] bool userHasDeclinedToRate() const;
  [[nodiscard]] bool userHasRatedCurrentVersion() const;

  // The three answers, each durable on return.
  void recordRated() { recordAnswer(kRatedCurrentVersion); }
  void recordDeclined() { recordAnswer(kDeclinedToRate); }
  void recordReminderRequest();

 private:
  struct Counted;
  void increment(const Counted& counted, bool debug);
  [[nodiscard]] std::string trackedVersion(const std::string& version);
  void countOne(const Counted& counted, bool debug);
  void startVersion(const std::string& version, const Counted& counted);
  void recordAnswer(const char* key);
  [[nodiscard]] double secondsSince(const char* dateKey) const;

  Ports ports_;
  std::mutex incrementing_;
};

}  // namespace endpin
