// The settings in memory only: for runs that leave nothing behind. Thread: any.
#pragma once

#include <functional>
#include <map>
#include <mutex>
#include <string>

#include "adapters/settings/SettingValue.h"
#include "ports/SettingsStore.h"

namespace endpin {

class MemoryStore : public SettingsStore {
 public:
  [[nodiscard]] std::int64_t integerForKey(std::string_view key) const override;
  [[nodiscard]] bool boolForKey(std::string_view key) const override;
  [[nodiscard]] double doubleForKey(std::string_view key) const override;
  [[nodiscard]] std::optional<std::string> stringForKey(std::string_view key) const override;

  void setInteger(std::string_view key, std::int64_t value) override { set(key, value); }
  void setBool(std::string_view key, bool value) override { set(key, value); }
  void setDouble(std::string_view key, double value) override { set(key, value); }
  void setString(std::string_view key, std::string_view value) override {
    set(key, std::string(value));
  }

  void removeAll() override;
  void synchronize() override {}

 private:
  [[nodiscard]] std::optional<SettingValue> find(std::string_view key) const;
  void set(std::string_view key, SettingValue value);

  mutable std::mutex mutex_;
  std::map<std::string, SettingValue, std::less<>> values_;
};

}  // namespace endpin
