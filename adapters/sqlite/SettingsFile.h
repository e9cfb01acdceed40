// The settings on disk: one table of typed values in a database with a write-ahead log.
//
// A change is one transaction. When write() has returned, the change has been handed to the
// operating system: it survives the end of the process in any form, kill -9 included, and no end
// whatever damages the file. A power cut may lose the last changes, because waiting for the disk
// would hold up the screen; the log is forced to disk when it is carried over into the database.
//
// Thread: one at a time.
#pragma once

#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>

#include "ports/Log.h"
#include "ports/TypedStore.h"

struct sqlite3;
struct sqlite3_stmt;

namespace endpin {

using SettingValues = std::map<std::string, SettingValue, std::less<>>;

// What a transaction does: first forget everything, if wanted, then write these values.
struct SettingChanges {
  bool clear = false;
  SettingValues values;
};

class SettingsFile {
 public:
  // Opens the file, making it and its folder when they are missing. A damaged file is renamed to
  // NAME.corrupt-TIME and a new one begun. A file that cannot be written is only read, one that
  // cannot even be read counts as empty. Each of these is one line in the log, which outlives this.
  SettingsFile(const std::filesystem::path& path, Log& log);
  ~SettingsFile();
  SettingsFile(const SettingsFile&) = delete;
  SettingsFile& operator=(const SettingsFile&) = delete;

  // What the file held when it was opened.
  SettingValues takeLoaded() { return std::move(loaded_); }

  // All of the changes or, when it returns false, none of them. The first failure is logged, and
  // the first success after it.
  bool write(const SettingChanges& changes);

 private:
  // An SQLite result code.
  using Result = int;

  void open();
  void openForReading(Result why);
  Result openWith(const std::string& name, int flags);
  Result prepareTable();
  Result load();
  Result writeAll(const SettingChanges& changes);
  Result put(sqlite3_stmt* statement, const std::string& key, const SettingValue& value);
  Result execute(const char* sql);
  bool setAside(Result why);
  void close();
  void say(const std::string& what);

  const std::filesystem::path path_;
  Log& log_;
  sqlite3* database_ = nullptr;
  SettingValues loaded_;
  bool writable_ = false;
  bool failing_ = false;
};

}  // namespace endpin
