// A settings store of typed values: how each reads as another type, over a way to find and to set
// one. Thread: any, if finding and setting are.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "adapters/settings/SettingValue.h"
#include "ports/SettingsStore.h"

namespace endpin {

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
