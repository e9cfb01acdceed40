// The settings in memory only: for runs that leave nothing behind. Thread: any.
#pragma once

#include <functional>
#include <map>
#include <mutex>
#include <string>

#include "ports/TypedStore.h"

namespace endpin {

class MemoryStore : public TypedStore {
 public:
  void removeAll() override;
  void synchronize() override {}

 protected:
  // Every value comes through these two.
  [[nodiscard]] std::optional<SettingValue> find(std::string_view key) const override;
  void set(std::string_view key, SettingValue value) override;

 private:
  mutable std::mutex mutex_;
  std::map<std::string, SettingValue, std::less<>> values_;
};

}  // namespace endpin
