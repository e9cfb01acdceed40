// What a settings store keeps, and how each value reads as another type: a part of what
// SettingsStore.h promises that is the same for every store. A store of a platform derives from
// TypedStore and says how a value is found and set. Thread: any, if finding and setting are.
#pragma once

#include <fmt/format.h>

#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <type_traits>
#include <variant>

#include "ports/SettingsStore.h"

namespace endpin {

using SettingValue = std::variant<bool, std::int64_t, double, std::string>;

namespace setting_detail {

inline std::string_view withoutLeadingSpace(std::string_view text) {
  const auto first = text.find_first_not_of(" \t\r\n");
  text.remove_prefix(first == text.npos ? text.size() : first);
  if (text.starts_with('+')) text.remove_prefix(1);
  return text;
}

// Like std::from_chars, for `text` without leading space.
template <class Number>
std::errc parseNumber(std::string_view text, Number& number) {
#ifndef __cpp_lib_to_chars
  // Some libraries can read whole numbers only. The C library reads the others in the same way in
  // the locale that such a program never leaves, but skips more and knows hexadecimal ones, too.
  if constexpr (std::is_floating_point_v<Number>) {
    const std::string decimal(text.substr(0, text.find_first_of("xX")));
    if (decimal.find_first_of("+ \t\r\n\v\f") == 0) return std::errc::invalid_argument;
    errno = 0;
    number = static_cast<Number>(std::strtod(decimal.c_str(), nullptr));
    return errno == ERANGE ? std::errc::result_out_of_range : std::errc{};
  } else
#endif
  {
    return std::from_chars(text.data(), text.data() + text.size(), number).ec;
  }
}

}  // namespace setting_detail

// The number that `text` begins with; the nearest one that fits; 0 when there is none.
template <class Number>
Number leadingNumber(std::string_view text) {
  text = setting_detail::withoutLeadingSpace(text);
  Number number = 0;
  if (setting_detail::parseNumber(text, number) != std::errc::result_out_of_range) return number;
  using Limits = std::numeric_limits<Number>;
  return text.starts_with('-') ? Limits::lowest() : Limits::max();
}

namespace setting_detail {

// Toward zero, to the nearest that fits; not a number is 0.
inline std::int64_t truncated(double value) {
  constexpr double kTooLarge = 9223372036854775808.0;  // 2^63
  if (std::isnan(value)) return 0;
  if (value >= kTooLarge) return std::numeric_limits<std::int64_t>::max();
  if (value < -kTooLarge) return std::numeric_limits<std::int64_t>::min();
  return static_cast<std::int64_t>(value);
}

// "YES", "true" and the like, or a number other than 0.
inline bool saysYes(std::string_view text) {
  text = withoutLeadingSpace(text);
  if (!text.empty() && std::string_view("YyTt").find(text.front()) != std::string_view::npos) {
    return true;
  }
  return leadingNumber<std::int64_t>(text) != 0;
}

template <class... Cases>
struct Overloaded : Cases... {
  using Cases::operator()...;
};
template <class... Cases>
Overloaded(Cases...) -> Overloaded<Cases...>;

}  // namespace setting_detail

inline std::int64_t asInteger(const SettingValue& value) {
  using namespace setting_detail;
  return std::visit(
      Overloaded{[](bool flag) { return std::int64_t{flag}; },
                 [](std::int64_t number) { return number; },
                 [](double number) { return truncated(number); },
                 [](const std::string& text) { return leadingNumber<std::int64_t>(text); }},
      value);
}

inline bool asBool(const SettingValue& value) {
  using namespace setting_detail;
  return std::visit(
      Overloaded{[](bool flag) { return flag; }, [](std::int64_t number) { return number != 0; },
                 [](double number) { return number != 0; },
                 [](const std::string& text) { return saysYes(text); }},
      value);
}

inline double asDouble(const SettingValue& value) {
  using namespace setting_detail;
  return std::visit(Overloaded{[](bool flag) { return flag ? 1.0 : 0.0; },
                               [](std::int64_t number) { return static_cast<double>(number); },
                               [](double number) { return number; },
                               [](const std::string& text) { return leadingNumber<double>(text); }},
                    value);
}

// Numbers read as their shortest decimal text, YES and NO as 1 and 0.
inline std::string asString(const SettingValue& value) {
  using namespace setting_detail;
  return std::visit(Overloaded{[](bool flag) { return std::string(flag ? "1" : "0"); },
                               [](std::int64_t number) { return fmt::format("{}", number); },
                               [](double number) { return fmt::format("{}", number); },
                               [](const std::string& text) { return text; }},
                    value);
}

class TypedStore : public SettingsStore {
 public:
  [[nodiscard]] std::int64_t integerForKey(std::string_view key) const final {
    return asInteger(find(key).value_or(std::int64_t{0}));
  }
  [[nodiscard]] bool boolForKey(std::string_view key) const final {
    return asBool(find(key).value_or(false));
  }
  [[nodiscard]] double doubleForKey(std::string_view key) const final {
    return asDouble(find(key).value_or(0.0));
  }
  [[nodiscard]] std::optional<std::string> stringForKey(std::string_view key) const final {
    const auto value = find(key);
    if (!value) return {};
    return asString(*value);
  }

  void setInteger(std::string_view key, std::int64_t value) final { set(key, value); }
  void setBool(std::string_view key, bool value) final { set(key, value); }
  void setDouble(std::string_view key, double value) final { set(key, value); }
  void setString(std::string_view key, std::string_view value) final {
    set(key, std::string(value));
  }

 private:
  [[nodiscard]] virtual std::optional<SettingValue> find(std::string_view key) const = 0;
  virtual void set(std::string_view key, SettingValue value) = 0;
};

}  // namespace endpin
