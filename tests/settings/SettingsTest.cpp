#include <gtest/gtest.h>
#include <sqlite3.h>
#include <sys/stat.h>

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <thread>

#include "adapters/sqlite/SqliteStore.h"
#include "adapters/sqlite/StorePath.h"
#include "tests/settings/RecordingLog.h"
#include "tests/support/TempDirectory.h"

namespace endpin {
namespace {

namespace fs = std::filesystem;
using testing::TempDirectory;

struct SettingsTest : ::testing::Test {
  TempDirectory folder;
  RecordingLog log;
  std::string path = folder.file("deep/er/settings.db");

  std::vector<std::string> filesLike(const std::string& part) const {
    std::vector<std::string> names;
    for (const auto& file : fs::directory_iterator(fs::path(path).parent_path())) {
      const std::string name = file.path().filename();
      if (name.find(part) != name.npos) names.push_back(name);
    }
    return names;
  }
};

std::streamoff placeIn(const std::string& path, const char* text) {
  std::ostringstream content;
  content << std::ifstream(path, std::ios::binary).rdbuf();
  return static_cast<std::streamoff>(content.str().find(text));
}

TEST_F(SettingsTest, RemoveAllReachesTheFileWithWhatFollows) {
  {
    SqliteStore store(path, log);
    store.setInteger("old", 7);
    store.setInteger("kept", 1);
    store.synchronize();
    store.removeAll();
    store.setInteger("kept", 2);
    EXPECT_EQ(SqliteStore(path, log).integerForKey("old"), 7) << "cleared before synchronize";
    store.synchronize();
    EXPECT_EQ(SqliteStore(path, log).stringForKey("old"), std::nullopt);
  }
  EXPECT_EQ(SqliteStore(path, log).integerForKey("kept"), 2);
  EXPECT_EQ(log.lines.size(), 0U);
}

TEST_F(SettingsTest, UnusualValuesComeBackAsTheyWere) {
  const std::string bytes("a\0\xff'; DROP TABLE settings", 25);
  {
    SqliteStore store(path, log);
    store.setString(bytes, bytes);
    store.setString("empty", "");
    store.setDouble("nan", std::nan(""));
    store.setDouble("tiny", 4.9e-324);
    store.setInteger("least", INT64_MIN);
    store.setBool("retyped", true);
    store.setString("retyped", "x");
  }
  const SqliteStore store(path, log);
  EXPECT_EQ(store.stringForKey(bytes), bytes);
  EXPECT_EQ(store.stringForKey("empty"), "");
  EXPECT_TRUE(std::isnan(store.doubleForKey("nan")));
  EXPECT_EQ(store.doubleForKey("tiny"), 4.9e-324);
  EXPECT_EQ(store.integerForKey("least"), INT64_MIN);
  EXPECT_EQ(store.stringForKey("retyped"), "x");
}

TEST_F(SettingsTest, TheFolderIsTheUsersAlone) {
  const SqliteStore store(path, log);
  for (const char* name : {"deep", "deep/er"}) {
    struct stat status {};
    ASSERT_EQ(stat(folder.file(name).c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777U, 0700U) << name;
  }
}

// Each row is how a file can be ruined: what is written over it from where.
TEST_F(SettingsTest, DamagedFilesAreKeptAside) {
  struct Row {
    const char* name;
    std::streamoff at;
    std::string bytes;
    bool fromScratch;
    const char* over = nullptr;  // or the text in the file that is overwritten
  };
  const Row rows[] = {
      {"no database, short", 0, "hello", true},
      {"no database, long", 0, std::string(9000, 'x'), true},
      {"another program's table", 0, "", false},
      {"header overwritten", 0, std::string(40, '\0'), false},
      {"table page overwritten", 4096, std::string(4096, '\x7f'), false},
      {"rows out of order", 0, "z", false, "kept"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    fs::remove_all(fs::path(path).parent_path());
    log.lines.clear();
    {
      SqliteStore store(path, log);
      store.setInteger("counter", 5);
      for (const char* key : {"kept", "other"}) store.setInteger(key, 1);
    }
    if (row.bytes.empty()) {
      fs::remove(path);
      sqlite3* other = nullptr;
      ASSERT_EQ(sqlite3_open(path.c_str(), &other), SQLITE_OK);
      sqlite3_exec(other, "CREATE TABLE settings (name, number)", nullptr, nullptr, nullptr);
      sqlite3_close(other);
    } else {
      if (row.fromScratch) fs::remove(path);
      std::ofstream file(path, std::ios::binary | std::ios::in | std::ios::out |
                                   (row.fromScratch ? std::ios::trunc : std::ios::openmode{}));
      file.seekp(row.over ? placeIn(path, row.over) : row.at);
      file << row.bytes;
    }
    {
      SqliteStore store(path, log);
      EXPECT_EQ(store.integerForKey("counter"), 0);
      store.setInteger("counter", 6);
    }
    EXPECT_EQ(log.lines.size(), 1U);
    const auto kept = filesLike(".corrupt-");
    ASSERT_EQ(kept.size(), 1U);
    EXPECT_NE(log.lines.at(0).find(kept[0]), std::string::npos) << log.lines[0];
    EXPECT_EQ(SqliteStore(path, log).integerForKey("counter"), 6);
  }
}

TEST_F(SettingsTest, ThreadsWriteAndReadAtOnce) {
  constexpr int kRounds = 300;
  {
    SqliteStore store(path, log);
    const auto write = [&store](const std::string& name) {
      for (int i = 1; i <= kRounds; ++i) {
        store.setInteger(name, i);
        store.setInteger(name + std::to_string(i % 10), i);
        EXPECT_EQ(store.integerForKey(name), i);
        store.synchronize();
      }
    };
    std::thread first(write, "first");
    std::thread second(write, "second");
    first.join();
    second.join();
    const SqliteStore beside(path, log);
    EXPECT_EQ(beside.integerForKey("first"), kRounds);
    EXPECT_EQ(beside.integerForKey("second"), kRounds);
  }
  EXPECT_EQ(log.lines.size(), 0U);
}

TEST_F(SettingsTest, DefaultPathFollowsTheEnvironment) {
  const std::string home = folder.file("home");
  setenv("HOME", home.c_str(), 1);
  for (const auto& [data, expected] :
       {std::pair{"/data", std::string("/data/endpin/settings.db")},
        std::pair{"relative", home + "/.local/share/endpin/settings.db"},
        std::pair{"", home + "/.local/share/endpin/settings.db"}}) {
    setenv("XDG_DATA_HOME", data, 1);
    EXPECT_EQ(defaultStorePath(), expected) << data;
  }
}

}  // namespace
}  // namespace endpin
