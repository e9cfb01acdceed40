// A typed value of the settings and how it reads as another type. Shared by the stores.
// Thread: any.
#pragma once

#include <fmt/format.h>

#include <charconv>
#include <cmath>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

namespace endpin {

using SettingValue = std::variant<bool, std::int64_t, double, std::string>;

namespace setting_detail {

inline std::string_view withoutLeadingSpace(std::string_view text) {
  const auto first = text.find_first_not_of(" \t\r\n");
  text.remove_prefix(first == text.npos ? text.size() : first);
  if (text.starts_with('+')) text.remove_prefix(1);
  return text;
}

// The number that `text` begins with; the nearest one that fits; 0 when there is none.
template <class Number>
Number leadingNumber(std::string_view text) {
  text = withoutLeadingSpace(text);
  Number number = 0;
  const auto result = std::from_chars(text.data(), text.data() + text.size(), number);
  if (result.ec != std::errc::result_out_of_range) return number;
  using Limits = std::numeric_limits<Number>;
  return text.starts_with('-') ? Limits::lowest() : Limits::max();
}

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

}  // namespace endpin
