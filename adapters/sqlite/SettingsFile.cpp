#include "adapters/sqlite/SettingsFile.h"

#include <fmt/chrono.h>
#include <fmt/format.h>
#include <sqlite3.h>
#include <sys/stat.h>

#include <array>
#include <cctype>
#include <cerrno>
#include <cmath>
#include <ctime>
#include <string_view>
#include <system_error>

namespace endpin {
namespace {

namespace fs = std::filesystem;

constexpr int kBusyMilliseconds = 250;  // another program of ours writes for far less

// Names of the types in the file, in the order of SettingValue.
constexpr std::array<std::string_view, 4> kTypes = {"boolean", "integer", "floating", "string"};

// Makes the folder and those above it that are missing, for the user alone.
std::error_code makePrivateFolder(const fs::path& folder) {
  std::error_code failed;
  if (folder.empty() || fs::is_directory(folder, failed)) return {};
  if (const auto above = makePrivateFolder(folder.parent_path())) return above;
  if (mkdir(folder.c_str(), S_IRWXU) == 0 || errno == EEXIST) return {};
  return {errno, std::generic_category()};
}

struct FinalizeStatement {
  void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
};
using Statement = std::unique_ptr<sqlite3_stmt, FinalizeStatement>;

Statement prepare(sqlite3* database, const char* sql) {
  sqlite3_stmt* statement = nullptr;
  sqlite3_prepare_v2(database, sql, -1, &statement, nullptr);
  return Statement(statement);
}

// The file is there, but it is no settings file that can be trusted.
bool isDamage(int result) {
  const int primary = result & 0xff;
  return primary == SQLITE_CORRUPT || primary == SQLITE_NOTADB || primary == SQLITE_ERROR;
}

std::string textColumn(sqlite3_stmt* row, int column) {
  const void* bytes = sqlite3_column_blob(row, column);
  const auto size = static_cast<std::size_t>(sqlite3_column_bytes(row, column));
  return bytes ? std::string(static_cast<const char*>(bytes), size) : std::string();
}

// Not a number is stored as null. A type of a later version is left alone.
std::optional<SettingValue> valueColumn(sqlite3_stmt* row, std::string_view type, int column) {
  if (type == kTypes[0]) return sqlite3_column_int64(row, column) != 0;
  if (type == kTypes[1]) return std::int64_t{sqlite3_column_int64(row, column)};
  if (type == kTypes[3]) return textColumn(row, column);
  if (type != kTypes[2]) return {};
  const bool isNull = sqlite3_column_type(row, column) == SQLITE_NULL;
  return isNull ? std::nan("") : sqlite3_column_double(row, column);
}

// For a file that nobody writes, in a folder where no helper files can be made beside it.
std::string immutableName(const fs::path& path) {
  std::string name = "file:";
  for (const char letter : path.string()) {
    const auto byte = static_cast<unsigned char>(letter);
    const bool plain = std::isalnum(byte) || letter == '/' || letter == '.' || letter == '-';
    name += plain ? std::string(1, letter) : fmt::format("%{:02X}", byte);
  }
  return name + "?immutable=1";
}

}  // namespace

SettingsFile::SettingsFile(const fs::path& path, Log& log) : path_(fs::absolute(path)), log_(log) {
  if (const auto failed = makePrivateFolder(path_.parent_path())) {
    say(fmt::format("cannot be kept ({}); they last until the program ends", failed.message()));
  } else {
    open();
  }
}

SettingsFile::~SettingsFile() {
  close();
}

void SettingsFile::open() {
  constexpr int kFlags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX;
  const auto attempt = [this] {
    Result result = openWith(path_.string(), kFlags);
    if (result == SQLITE_OK) result = prepareTable();
    return result == SQLITE_OK ? load() : result;
  };
  Result result = attempt();
  if (isDamage(result) && setAside(result)) result = attempt();
  writable_ = result == SQLITE_OK && !sqlite3_db_readonly(database_, "main");
  if (!writable_) openForReading(result);
}

void SettingsFile::openForReading(Result why) {
  if (why == SQLITE_OK) why = SQLITE_READONLY;
  say(fmt::format("cannot be written ({}); changes last until the program ends",
                  sqlite3_errstr(why)));
  constexpr int kFlags = SQLITE_OPEN_READONLY | SQLITE_OPEN_NOMUTEX;
  if (openWith(path_.string(), kFlags) == SQLITE_OK && load() == SQLITE_OK) return;
  if (openWith(immutableName(path_), kFlags | SQLITE_OPEN_URI) == SQLITE_OK) load();
}

SettingsFile::Result SettingsFile::openWith(const std::string& name, int flags) {
  close();
  const Result result = sqlite3_open_v2(name.c_str(), &database_, flags, nullptr);
  if (result == SQLITE_OK) sqlite3_busy_timeout(database_, kBusyMilliseconds);
  return result;
}

SettingsFile::Result SettingsFile::prepareTable() {
  for (const char* sql :
       {"PRAGMA journal_mode = WAL", "PRAGMA synchronous = NORMAL",
        "CREATE TABLE IF NOT EXISTS settings (key TEXT PRIMARY KEY, type TEXT, value) "
        "WITHOUT ROWID"}) {
    if (const Result result = execute(sql); result != SQLITE_OK) return result;
  }
  // The thorough check: the quick one overlooks rows out of order, which are written beside and
  // never found again.
  const Statement check = prepare(database_, "PRAGMA integrity_check(1)");
  if (!check || sqlite3_step(check.get()) != SQLITE_ROW) return sqlite3_errcode(database_);
  return textColumn(check.get(), 0) == "ok" ? SQLITE_OK : SQLITE_CORRUPT;
}

SettingsFile::Result SettingsFile::load() {
  loaded_.clear();
  const Statement rows = prepare(database_, "SELECT key, type, value FROM settings");
  if (!rows) return sqlite3_errcode(database_);
  Result result = SQLITE_OK;
  while ((result = sqlite3_step(rows.get())) == SQLITE_ROW) {
    if (auto value = valueColumn(rows.get(), textColumn(rows.get(), 1), 2)) {
      loaded_.insert_or_assign(textColumn(rows.get(), 0), std::move(*value));
    }
  }
  return result == SQLITE_DONE ? SQLITE_OK : result;
}

bool SettingsFile::write(const SettingChanges& changes) {
  if (!writable_) return false;
  const Result result = writeAll(changes);
  const bool written = result == SQLITE_OK;
  if (!written && !failing_) {
    say(fmt::format("cannot be written ({}); they are kept in memory until they can",
                    sqlite3_errstr(result)));
  }
  if (!written) execute("ROLLBACK");
  if (written && failing_) say("can be written again");
  failing_ = !written;
  return written;
}

SettingsFile::Result SettingsFile::writeAll(const SettingChanges& changes) {
  Result result = execute("BEGIN IMMEDIATE");
  if (result == SQLITE_OK && changes.clear) result = execute("DELETE FROM settings");
  const Statement statement =
      prepare(database_, "INSERT OR REPLACE INTO settings (key, type, value) VALUES (?, ?, ?)");
  if (!statement) return sqlite3_errcode(database_);
  for (auto entry = changes.values.begin(); entry != changes.values.end(); ++entry) {
    if (result != SQLITE_OK) return result;
    result = put(statement.get(), entry->first, entry->second);
  }
  return result == SQLITE_OK ? execute("COMMIT") : result;
}

SettingsFile::Result SettingsFile::put(sqlite3_stmt* statement, const std::string& key,
                                       const SettingValue& value) {
  const auto bindText = [statement](int place, std::string_view text) {
    sqlite3_bind_text(statement, place, text.data(), static_cast<int>(text.size()), nullptr);
  };
  bindText(1, key);
  bindText(2, kTypes[value.index()]);
  if (const auto* text = std::get_if<std::string>(&value)) {
    bindText(3, *text);
  } else if (const auto* number = std::get_if<double>(&value)) {
    sqlite3_bind_double(statement, 3, *number);
  } else {
    sqlite3_bind_int64(statement, 3, asInteger(value));
  }
  const Result result = sqlite3_step(statement);
  sqlite3_reset(statement);
  return result == SQLITE_DONE ? SQLITE_OK : result;
}

SettingsFile::Result SettingsFile::execute(const char* sql) {
  return sqlite3_exec(database_, sql, nullptr, nullptr, nullptr);
}

// The log belongs to the file and goes with it as it is, not carried over into what is damaged:
// nothing is lost that could still be saved by hand. The index of the log is made anew.
bool SettingsFile::setAside(Result why) {
  sqlite3_db_config(database_, SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 1, nullptr);
  close();
  const std::string stamp = fmt::format("{:%Y%m%dT%H%M%SZ}", fmt::gmtime(std::time(nullptr)));
  fs::path kept;
  int attempt = 0;
  do {
    kept = path_.string() + ".corrupt-" + stamp + (attempt ? fmt::format("-{}", attempt) : "");
    ++attempt;
  } while (fs::exists(kept));
  std::error_code failed;
  fs::rename(path_, kept, failed);
  if (failed) return false;
  std::error_code ignored;
  const fs::path log = path_.string() + "-wal";
  if (fs::is_empty(log, ignored)) fs::remove(log, ignored);  // made by opening the file
  fs::rename(log, kept.string() + "-wal", ignored);
  fs::remove(path_.string() + "-shm", ignored);
  say(fmt::format("are damaged ({}); the file is kept as {}, and the defaults are used",
                  sqlite3_errstr(why), kept.filename().string()));
  return true;
}

void SettingsFile::close() {
  sqlite3_close(database_);
  database_ = nullptr;
}

void SettingsFile::say(const std::string& what) {
  log_.line(fmt::format("The settings in {} {}.", path_.string(), what));
}

}  // namespace endpin
