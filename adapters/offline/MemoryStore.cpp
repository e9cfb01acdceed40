#include "adapters/offline/MemoryStore.h"

#include <utility>

namespace endpin {

std::int64_t MemoryStore::integerForKey(std::string_view key) const {
  const auto value = find(key);
  return value ? asInteger(*value) : 0;
}

bool MemoryStore::boolForKey(std::string_view key) const {
  const auto value = find(key);
  return value && asBool(*value);
}

double MemoryStore::doubleForKey(std::string_view key) const {
  const auto value = find(key);
  return value ? asDouble(*value) : 0.0;
}

std::optional<std::string> MemoryStore::stringForKey(std::string_view key) const {
  const auto value = find(key);
  if (!value) return std::nullopt;
  return asString(*value);
}

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
