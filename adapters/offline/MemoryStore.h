// The settings in memory only: for runs that leave nothing behind. Thread: any.
#pragma once

#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <utility>

#include "ports/TypedStore.h"

namespace endpin {

class MemoryStore : public TypedStore {
 public:
  void removeAll() override {
    const std::lock_guard lock(mutex_);
    values_.clear();
  }
  void synchronize() override {}

 protected:
  // Every value comes through these two.
  [[nodiscard]] std::optional<SettingValue> find(std::string_view key) const override {
    const std::lock_guard lock(mutex_);
    const auto found = values_.find(key);
    if (found == values_.end()) return std::nullopt;
    return found->second;
  }
  void set(std::string_view key, SettingValue value) override {
    const std::lock_guard lock(mutex_);
    values_.insert_or_assign(std::string(key), std::move(value));
  }

 private:
  mutable std::mutex mutex_;
  std::map<std::string, SettingValue, std::less<>> values_;
};

}  // namespace endpin
