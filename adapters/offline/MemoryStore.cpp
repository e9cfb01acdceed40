#include "adapters/offline/MemoryStore.h"

#include <utility>

namespace endpin {

void MemoryStore::removeAll() {
  const std::lock_guard lock(mutex_);
  values_.clear();
}

std::optional<SettingValue> MemoryStore::find(std::string_view key) const {
  const std::lock_guard lock(mutex_);
  const auto found = values_.find(key);
  if (found == values_.end()) return std::nullopt;
  return found->second;
}

void MemoryStore::set(std::string_view key, SettingValue value) {
  const std::lock_guard lock(mutex_);
  values_.insert_or_assign(std::string(key), std::move(value));
}

}  // namespace endpin
