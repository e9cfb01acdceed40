#include "adapters/sqlite/SqliteStore.h"

#include <pwd.h>
#include <unistd.h>

#include <cstdlib>
#include <utility>

namespace endpin {
namespace {

namespace fs = std::filesystem;

fs::path homeFolder() {
  const char* home = std::getenv("HOME");
  if (home && *home) return home;
  const passwd* user = getpwuid(getuid());
  return user ? user->pw_dir : "/";
}

fs::path dataFolder() {
  const char* folder = std::getenv("XDG_DATA_HOME");
  if (folder && fs::path(folder).is_absolute()) return folder;
  return homeFolder() / ".local" / "share";
}

}  // namespace

fs::path defaultStorePath() {
  return dataFolder() / "endpin" / "settings.db";
}

SqliteStore::SqliteStore(const std::filesystem::path& path, Log& log)
    : file_(path, log), values_(file_.takeLoaded()) {}

SqliteStore::~SqliteStore() {
  synchronize();
}

std::optional<SettingValue> SqliteStore::find(std::string_view key) const {
  const std::lock_guard lock(valuesMutex_);
  const auto found = values_.find(key);
  if (found == values_.end()) return {};
  return found->second;
}

void SqliteStore::set(std::string_view key, SettingValue value) {
  const std::lock_guard lock(valuesMutex_);
  const auto found = values_.find(key);
  if (found != values_.end() && found->second == value) return;
  values_.insert_or_assign(std::string(key), std::move(value));
  unwritten_.emplace(key);
}

void SqliteStore::removeAll() {
  const std::lock_guard lock(valuesMutex_);
  values_.clear();
  unwritten_.clear();
  clearUnwritten_ = true;
}

void SqliteStore::synchronize() {
  const std::lock_guard lock(fileMutex_);
  const SettingChanges changes = takePending();
  if (!changes.clear && changes.values.empty()) return;
  if (!file_.write(changes)) putBack(changes);
}

SettingChanges SqliteStore::takePending() {
  const std::lock_guard lock(valuesMutex_);
  SettingChanges changes{std::exchange(clearUnwritten_, false), {}};
  for (const std::string& key : unwritten_) changes.values.emplace(key, values_.at(key));
  unwritten_.clear();
  return changes;
}

// For the next synchronize, unless everything has been forgotten meanwhile.
void SqliteStore::putBack(const SettingChanges& changes) {
  const std::lock_guard lock(valuesMutex_);
  if (clearUnwritten_) return;
  clearUnwritten_ = changes.clear;
  for (const auto& [key, value] : changes.values) unwritten_.insert(key);
}

}  // namespace endpin
