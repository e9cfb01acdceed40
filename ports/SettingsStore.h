// The persistent key-value store of the application. Values are typed when written and converted
// when read: a stored YES reads as integer 1, a stored integer as floating point, a number in a
// string as that number. A missing key reads as 0, NO, 0.0 or no string.
//
// Called by the application shell and by every action that changes a setting (main thread), and by
// the rating prompt (its own queues). Thread: any; each call is atomic by itself.
#pragma once

#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <string_view>

namespace endpin {

class SettingsStore {
 public:
  virtual ~SettingsStore() = default;

  [[nodiscard]] virtual std::int64_t integerForKey(std::string_view key) const = 0;
  [[nodiscard]] virtual bool boolForKey(std::string_view key) const = 0;
  [[nodiscard]] virtual double doubleForKey(std::string_view key) const = 0;
  [[nodiscard]] virtual std::optional<std::string> stringForKey(std::string_view key) const = 0;

  // A written value is seen by every later read of this process at once.
  virtual void setInteger(std::string_view key, std::int64_t value) = 0;
  virtual void setBool(std::string_view key, bool value) = 0;
  virtual void setDouble(std::string_view key, double value) = 0;
  virtual void setString(std::string_view key, std::string_view value) = 0;

  // Forgets every key, the rating prompt's included.
  virtual void removeAll() = 0;

  // Makes what was written durable: afterwards it survives the end of the process in any form.
  // A store that cannot write says so in the log and goes on in memory.
  virtual void synchronize() = 0;
};

// What follows a stored count. A store may hold any number: the greatest stays.
[[nodiscard]] constexpr std::int64_t countAfter(std::int64_t count) {
  return count < std::numeric_limits<std::int64_t>::max() ? count + 1 : count;
}

}  // namespace endpin
