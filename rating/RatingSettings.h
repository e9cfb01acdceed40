// How eagerly the rating prompt asks, and how it shows itself. One set for the whole process, see
// RatingPrompt's class setters. Days are 86400 seconds.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace endpin {

struct RatingSettings {
  std::optional<std::string> appId;                // the application's number in the store
  double daysUntilPrompt = 30;                     // since the first use of this version
  std::int64_t usesUntilPrompt = 20;               // launches and returns to the foreground
  std::int64_t significantEventsUntilPrompt = -1;  // negative: none are needed
  double timeBeforeReminding = 1;                  // days since the user asked to be reminded
  bool debug = false;                              // asks whatever the conditions say, and logs
  bool usesAnimation = true;                       // of the store sheet
  bool modalOpen = false;                          // the store sheet is on the screen
  bool alwaysUseMainBundle = false;                // for the texts of the alert
};

}  // namespace endpin
