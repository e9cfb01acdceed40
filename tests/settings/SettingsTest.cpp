// The settings store, alone and in programs that are killed, run out of disk or may not write.
#include <gtest/gtest.h>
#include <sqlite3.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <unistd.h>

#include <cmath>
#include <csignal>
#include <fstream>
#include <iostream>
#include <iterator>
#include <random>
#include <thread>

#include "adapters/sqlite/SqliteStore.h"
#include "tests/fakes/FakePlatform.h"
#include "tests/support/TempDirectory.h"

namespace endpin {
namespace {

namespace fs = std::filesystem;
using ::testing::ExitedWithCode;

struct SettingsTest : ::testing::Test {
  // The damaged file, beside the one in use.
  fs::path keptAside() const {
    for (const auto& file : fs::directory_iterator(fs::path(path).parent_path())) {
      const std::string name = file.path().filename();
      if (name.find(".corrupt-") != name.npos && !name.ends_with("-wal")) return file.path();
    }
    return {};
  }

  testing::TempDirectory folder;
  std::string path = folder.file("settings.db");
  fakes::FakeLog log;
};

// Ends a program without cleaning up; its exit code is the number of lines in the log.
[[noreturn]] void exitWith(const fakes::FakeLog& log) {
  for (const std::string& line : log.lines) std::cerr << line << '\n';
  _exit(static_cast<int>(log.lines.size()));
}

TEST_F(SettingsTest, ValuesComeBackAsTheyWere) {
  const std::string bytes("a\0\xff'; DROP TABLE settings", 25);
  path = folder.file("deep/er/settings.db");
  {
    SqliteStore store(path, log);
    store.setInteger("least", INT64_MIN);
    store.setDouble("tiny", 4.9e-324);
    store.setDouble("nan", std::nan(""));
    store.setString("empty", "");
    store.setString(bytes, bytes);
    store.setBool("retyped", true);
    store.setString("retyped", "433.5 Hz");
    store.setBool("yes", true);
  }
  const SqliteStore store(path, log);
  const std::pair<std::string, std::string> rows[] = {{"least", "-9223372036854775808"},
                                                      {"tiny", "5e-324"},
                                                      {"nan", "nan"},
                                                      {"empty", ""},
                                                      {bytes, bytes},
                                                      {"retyped", "433.5 Hz"},
                                                      {"yes", "1"}};
  for (const auto& [key, text] : rows) EXPECT_EQ(store.stringForKey(key), text);
  EXPECT_TRUE(log.lines.empty());
  for (const char* name : {"deep", "deep/er"}) {
    EXPECT_EQ(fs::status(folder.file(name)).permissions(), fs::perms::owner_all) << name;
  }
}

TEST_F(SettingsTest, RemoveAllReachesTheFileWithWhatFollows) {
  {
    SqliteStore store(path, log);
    store.setInteger("old", 7);
    store.setInteger("kept", 1);
    store.synchronize();
    store.setInteger("unwritten", 1);
    store.removeAll();
    store.setInteger("kept", 2);
    EXPECT_EQ(SqliteStore(path, log).integerForKey("old"), 7) << "cleared before synchronize";
    store.synchronize();
    EXPECT_EQ(SqliteStore(path, log).stringForKey("old"), std::nullopt);
    store.setInteger("last", 3);
  }
  EXPECT_EQ(SqliteStore(path, log).integerForKey("kept"), 2);
  EXPECT_EQ(SqliteStore(path, log).integerForKey("last"), 3);
  EXPECT_TRUE(log.lines.empty());
}

// Both keys change together, every fifth time after everything has been forgotten. From the first
// change on there is not much time left.
void countUntilKilled(const std::string& path, int microseconds, std::atomic<std::int64_t>& count) {
  fakes::FakeLog log;
  SqliteStore store(path, log);
  const std::int64_t begin = store.integerForKey("counter");
  for (std::int64_t n = begin + 1;; ++n) {
    if (n % 5 == 0) store.removeAll();
    store.setInteger("counter", n);
    store.setInteger("mirror", n);
    store.synchronize();
    count = n;
    const itimerval untilKilled{{}, {0, microseconds}};
    if (n == begin + 1) setitimer(ITIMER_REAL, &untilKilled, nullptr);
  }
}

TEST_F(SettingsTest, NothingIsLostByProgramsThatAreKilled) {
  auto& count = *new (mmap(nullptr, sizeof(std::atomic<std::int64_t>), PROT_READ | PROT_WRITE,
                           MAP_SHARED | MAP_ANONYMOUS, -1, 0)) std::atomic<std::int64_t>(0);
  std::mt19937 random(20240817);
  std::uniform_int_distribution<int> microseconds(1, 20000);
  for (int round = 0; round < 200; ++round) {
    const std::int64_t before = count;
    ASSERT_EXIT(countUntilKilled(path, microseconds(random), count),
                ::testing::KilledBySignal(SIGALRM), "");
    ASSERT_GT(count, before);
    const SqliteStore store(path, log);
    const std::int64_t counter = store.integerForKey("counter");
    ASSERT_TRUE(counter == count || counter == count + 1) << counter << " not " << count;
    ASSERT_EQ(store.integerForKey("mirror"), counter) << "half a change, round " << round;
    ASSERT_TRUE(log.lines.empty()) << "round " << round;
  }
}

void setFileSizeLimit(rlim_t bytes) {
  rlimit limit{};
  getrlimit(RLIMIT_FSIZE, &limit);
  limit.rlim_cur = std::min(bytes, limit.rlim_max);
  setrlimit(RLIMIT_FSIZE, &limit);
}

TEST_F(SettingsTest, GoOnInMemoryOnAFullDisk) {
  signal(SIGXFSZ, SIG_IGN);
  SqliteStore store(path, log);
  store.setInteger("old", 1);
  store.synchronize();
  setFileSizeLimit(32 * 1024);
  store.removeAll();
  for (int i = 0; i < 20; ++i) {
    store.setString("large" + std::to_string(i), std::string(8192, 'x'));
    if (i > 5) store.synchronize();  // too much from the first time on
  }
  EXPECT_EQ(store.stringForKey("large19")->size(), 8192U) << "in memory";
  EXPECT_EQ(log.lines.size(), 1U);
  setFileSizeLimit(RLIM_INFINITY);
  store.synchronize();
  ASSERT_EQ(log.lines.size(), 2U);
  EXPECT_NE(log.lines[0].find("cannot be written ("), std::string::npos);
  EXPECT_NE(log.lines[1].find("can be written again"), std::string::npos);
  const SqliteStore written(path, log);
  EXPECT_EQ(written.stringForKey("old"), std::nullopt);
  EXPECT_EQ(written.stringForKey("large19").value_or("").size(), 8192U);
}

// A refusal in the midst of a change leaves the file to others and takes none of the change.
TEST_F(SettingsTest, ARefusedChangeIsTakenBackWhole) {
  SqliteStore store(path, log);
  sqlite3* other = nullptr;
  ASSERT_EQ(sqlite3_open(path.c_str(), &other), SQLITE_OK);
  const auto execute = [&](const char* sql) {
    return sqlite3_exec(other, sql, nullptr, nullptr, nullptr);
  };
  EXPECT_EQ(execute("CREATE TRIGGER refusal BEFORE INSERT ON settings WHEN NEW.key = 'b' "
                    "BEGIN SELECT RAISE(ABORT, 'no'); END"),
            SQLITE_OK);
  for (const char* key : {"a", "b"}) store.setInteger(key, 1);
  store.synchronize();
  EXPECT_EQ(SqliteStore(path, log).integerForKey("a"), 0);
  EXPECT_EQ(execute("DROP TRIGGER refusal"), SQLITE_OK) << "the file is still held";
  sqlite3_close(other);
  store.synchronize();
  EXPECT_EQ(SqliteStore(path, log).integerForKey("b"), 1);
  EXPECT_EQ(log.lines.size(), 2U) << "refused, and written again";
}

TEST_F(SettingsTest, ReadAndGoOnInMemoryWhereTheyMayNotWrite) {
  SqliteStore(path, log).setInteger("counter", 41);
  chmod(path.c_str(), 0444);
  chmod(folder.path().c_str(), 0555);
  const auto countOnce = [&](const std::string& file) {
    if (getuid() == 0 && setresuid(65534, 65534, 65534) != 0) _exit(99);  // root may write anywhere
    {
      SqliteStore store(file, log);
      store.setInteger("counter", store.integerForKey("counter") + 1);
      store.synchronize();
      std::cerr << "counted " << store.integerForKey("counter") << '\n';
    }
    exitWith(log);
  };
  EXPECT_EXIT(countOnce(path), ExitedWithCode(1), "counted 42\n.*until the program ends");
  EXPECT_EXIT(countOnce(folder.file("new/settings.db")), ExitedWithCode(1),
              "counted 1\n.*until the program ends");
  chmod(folder.path().c_str(), 0700);
}

TEST_F(SettingsTest, DamagedFilesAreKeptAside) {
  const struct {
    const char* name;
    void (*ruin)(std::string& content);
  } rows[] = {
      {"no database", [](std::string& file) { file = "hello"; }},
      {"no such column",
       [](std::string& file) { file.replace(file.find("type TEXT"), 4, "kind"); }},
      {"table page gone", [](std::string& file) { file.replace(4096, 4096, 4096, '\x7f'); }},
      {"rows out of order", [](std::string& file) { file[file.find("kept")] = 'z'; }},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    path = folder.file(std::string(row.name) + "/settings.db");
    log.lines.clear();
    {
      SqliteStore store(path, log);
      for (const char* key : {"counter", "kept", "other"}) store.setInteger(key, 5);
    }
    std::ifstream sound(path, std::ios::binary);
    std::string content(std::istreambuf_iterator<char>(sound), {});
    row.ruin(content);
    std::ofstream(path, std::ios::binary) << content;
    {
      SqliteStore store(path, log);
      EXPECT_EQ(store.integerForKey("counter"), 0);
      store.setInteger("counter", 6);
    }
    ASSERT_EQ(log.lines.size(), 1U);
    const fs::path kept = keptAside();
    EXPECT_NE(log.lines[0].find(kept.filename()), std::string::npos) << log.lines[0];
    EXPECT_EQ(fs::file_size(kept), content.size());
    EXPECT_EQ(SqliteStore(path, log).integerForKey("counter"), 6);
  }
}

// What a program that was killed had not carried over yet stands in the log.
TEST_F(SettingsTest, TheLogOfADamagedFileIsKeptBesideIt) {
  SqliteStore(path, log).setInteger("counter", 5);
  const auto write = [&] {
    SqliteStore store(path, log);
    store.setInteger("counter", 6);
    store.synchronize();
    exitWith(log);
  };
  EXPECT_EXIT(write(), ExitedWithCode(0), "");
  const auto size = fs::file_size(path + "-wal");
  ASSERT_GT(size, 0U);
  std::fstream(path, std::ios::binary | std::ios::in | std::ios::out) << std::string(4096, 'x');
  EXPECT_EQ(SqliteStore(path, log).integerForKey("counter"), 0);
  EXPECT_EQ(fs::file_size(keptAside().string() + "-wal"), size);
}

TEST_F(SettingsTest, ThreadsWriteAndReadAtOnce) {
  constexpr int kRounds = 300;
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
  write("second");
  first.join();
  const SqliteStore beside(path, log);
  EXPECT_EQ(beside.integerForKey("first"), kRounds);
  EXPECT_EQ(beside.integerForKey("second"), kRounds);
  EXPECT_TRUE(log.lines.empty());
}

TEST_F(SettingsTest, DefaultPathFollowsTheEnvironment) {
  setenv("HOME", "/home/me", 1);
  for (const auto& [data, expected] : {std::pair{"/data", "/data/endpin/settings.db"},
                                       {"relative", "/home/me/.local/share/endpin/settings.db"},
                                       {"", "/home/me/.local/share/endpin/settings.db"}}) {
    setenv("XDG_DATA_HOME", data, 1);
    EXPECT_EQ(defaultStorePath(), expected) << data;
  }
}

}  // namespace
}  // namespace endpin
