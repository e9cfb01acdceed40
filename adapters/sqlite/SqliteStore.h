// The settings store of a desktop: all values in memory, for reads that never touch the disk, and a
// file behind them that synchronize() brings up to date. See SettingsFile.h for what survives what.
//
// Thread: any; each call is atomic by itself, and readers do not wait for the disk.
#pragma once

#include <filesystem>
#include <mutex>
#include <set>

#include "adapters/sqlite/SettingsFile.h"
#include "ports/TypedStore.h"

namespace endpin {

// Where the settings are kept: settings.db in the user's data folder, $XDG_DATA_HOME/endpin, or
// ~/.local/share/endpin when that is not set or not absolute.
[[nodiscard]] std::filesystem::path defaultStorePath();

class SqliteStore final : public TypedStore {
 public:
  // Reads the file at `path`. Whatever is wrong with it is one line in `log`, which outlives the
  // store, and the store goes on in memory.
  SqliteStore(const std::filesystem::path& path, Log& log);
  // Writes what has not been synchronized.
  ~SqliteStore() override;

  // The file is emptied together with what is written after it, by one transaction of the next
  // synchronize: no end of the process leaves it half done.
  void removeAll() override;
  void synchronize() override;

 private:
  [[nodiscard]] std::optional<SettingValue> find(std::string_view key) const override;
  void set(std::string_view key, SettingValue value) override;
  SettingChanges takePending();
  void putBack(const SettingChanges& changes);

  std::mutex fileMutex_;  // one synchronize at a time; taken before the other one
  SettingsFile file_;

  mutable std::mutex valuesMutex_;  // guards what follows
  SettingValues values_;
  std::set<std::string, std::less<>> unwritten_;
  bool clearUnwritten_ = false;
};

}  // namespace endpin
