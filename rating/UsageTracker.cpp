#include "rating/UsageTracker.h"

#include <fmt/format.h>

namespace endpin {
namespace {

constexpr double kSecondsPerDay = 86400;

}  // namespace

// What is counted, and what a version begins with that is first seen by such a count. A use fills
// in the date of the first use at once, an event leaves that to whatever is counted next.
struct UsageTracker::Counted {
  const char* key;
  const char* name;  // in the log
  bool firstUseIsNow;
  std::int64_t firstUseCount;
  std::int64_t firstEventCount;
};

void UsageTracker::incrementUseCount(bool debug) {
  increment({kUseCount, "Use", true, 1, 0}, debug);
}

void UsageTracker::incrementSignificantEventCount(bool debug) {
  increment({kSignificantEventCount, "Significant event", false, 0, 1}, debug);
}

void UsageTracker::increment(const Counted& counted, bool debug) {
  const std::lock_guard lock(incrementing_);
  const std::string version = ports_.mainBundle.infoValue("CFBundleVersion").value_or("");
  const std::string tracked = trackedVersion(version);
  if (debug) ports_.log.line("RATINGPROMPT Tracking version: " + tracked);
  if (tracked == version) {
    countOne(counted, debug);
  } else {
    startVersion(version, counted);
  }
  ports_.settings.synchronize();
}

std::string UsageTracker::trackedVersion(const std::string& version) {
  if (auto tracked = ports_.settings.stringForKey(kCurrentVersion)) return *tracked;
  ports_.settings.setString(kCurrentVersion, version);
  return version;
}

void UsageTracker::countOne(const Counted& counted, bool debug) {
  SettingsStore& settings = ports_.settings;
  if (settings.doubleForKey(kFirstUseDate) == 0) {
    settings.setDouble(kFirstUseDate, ports_.clock.secondsSince1970());
  }
  const std::int64_t count = countAfter(settings.integerForKey(counted.key));
  settings.setInteger(counted.key, count);
  if (debug) ports_.log.line(fmt::format("RATINGPROMPT {} count: {}", counted.name, count));
}

void UsageTracker::startVersion(const std::string& version, const Counted& counted) {
  SettingsStore& settings = ports_.settings;
  settings.setString(kCurrentVersion, version);
  settings.setDouble(kFirstUseDate, counted.firstUseIsNow ? ports_.clock.secondsSince1970() : 0);
  settings.setInteger(kUseCount, counted.firstUseCount);
  settings.setInteger(kSignificantEventCount, counted.firstEventCount);
  settings.setBool(kRatedCurrentVersion, false);
  settings.setBool(kDeclinedToRate, false);
  settings.setDouble(kReminderRequestDate, 0);
}

bool UsageTracker::conditionsHaveBeenMet(const RatingSettings& wanted) const {
  if (wanted.debug) return true;
  const SettingsStore& settings = ports_.settings;
  if (secondsSince(kFirstUseDate) < wanted.daysUntilPrompt * kSecondsPerDay) return false;
  if (settings.integerForKey(kUseCount) < wanted.usesUntilPrompt) return false;
  if (settings.integerForKey(kSignificantEventCount) < wanted.significantEventsUntilPrompt) {
    return false;
  }
  return secondsSince(kReminderRequestDate) >= wanted.timeBeforeReminding * kSecondsPerDay;
}

bool UsageTracker::userHasDeclinedToRate() const {
  return ports_.settings.boolForKey(kDeclinedToRate);
}

bool UsageTracker::userHasRatedCurrentVersion() const {
  return ports_.settings.boolForKey(kRatedCurrentVersion);
}

void UsageTracker::recordReminderRequest() {
  ports_.settings.setDouble(kReminderRequestDate, ports_.clock.secondsSince1970());
  ports_.settings.synchronize();
}

void UsageTracker::recordAnswer(const char* key) {
  ports_.settings.setBool(key, true);
  ports_.settings.synchronize();
}

double UsageTracker::secondsSince(const char* dateKey) const {
  return ports_.clock.secondsSince1970() - ports_.settings.doubleForKey(dateKey);
}

}  // namespace endpin
