// What programs leave in the settings that are killed, run out of disk, or may not write.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <random>
#include <thread>

#include "adapters/sqlite/SqliteStore.h"
#include "tests/settings/RecordingLog.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/TempDirectory.h"

namespace endpin {
namespace {

using namespace std::chrono_literals;
using testing::ChildProcess;
using testing::Finished;
using testing::runToEnd;
using testing::TempDirectory;

Finished writer(const char* mode, const std::string& path) {
  return runToEnd({SETTINGS_WRITER, mode, path}, 20s);
}

// The last line that is complete; 0 when there is none.
std::int64_t lastNumber(const std::string& output) {
  const auto end = output.rfind('\n');
  if (end == output.npos) return 0;
  const auto begin = output.rfind('\n', end - 1);
  return std::stoll(output.substr(begin == output.npos ? 0 : begin + 1));
}

TEST(SettingsInPrograms, ValuesKeepTheirTypesFromOneToTheNext) {
  const TempDirectory folder;
  ASSERT_EQ(writer("write", folder.file("settings.db")).exitCode, 0);
  const Finished read = writer("read", folder.file("settings.db"));
  EXPECT_EQ(read.output,
            "yes 1 true 1 1\n"
            "hertz 415 true 415 415\n"
            "half 0 true 0.1 0.1\n"
            "text 433 true 433.5 433.5 H\xc3\xa4nde\n"
            "missing 0 false 0 (none)\n");
  EXPECT_EQ(read.errors, "");
}

TEST(SettingsInPrograms, LoseNothingWhenKilled) {
  const TempDirectory folder;
  const std::string path = folder.file("settings.db");
  std::mt19937 random(20240817);
  std::uniform_int_distribution<int> microseconds(0, 20000);
  for (int round = 0; round < 200; ++round) {
    ChildProcess child({SETTINGS_WRITER, "count", path});
    const auto deadline = std::chrono::steady_clock::now() + 20s;
    while (child.output().empty() && std::chrono::steady_clock::now() < deadline) {
      std::this_thread::sleep_for(1ms);
    }
    std::this_thread::sleep_for(std::chrono::microseconds(microseconds(random)));
    child.signal(SIGKILL);
    ASSERT_EQ(child.waitFor(20s), 128 + SIGKILL);
    const std::int64_t printed = lastNumber(child.output());
    ASSERT_GT(printed, 0);

    RecordingLog log;
    const SqliteStore store(path, log);
    ASSERT_EQ(log.lines, std::vector<std::string>{}) << "round " << round;
    const std::int64_t counter = store.integerForKey("counter");
    ASSERT_GE(counter, printed) << "round " << round;
    ASSERT_LE(counter, printed + 1) << "round " << round;
    ASSERT_EQ(store.integerForKey("mirror"), counter) << "half a change, round " << round;
  }
}

TEST(SettingsInPrograms, GoOnInMemoryOnAFullDisk) {
  const TempDirectory folder;
  const std::string path = folder.file("settings.db");
  const Finished full = writer("full", path);
  EXPECT_EQ(full.exitCode, 0);
  EXPECT_EQ(full.output, "in memory 8192\n");
  EXPECT_EQ(std::count(full.errors.begin(), full.errors.end(), '\n'), 2) << full.errors;
  EXPECT_NE(full.errors.find("cannot be written ("), std::string::npos) << full.errors;
  EXPECT_NE(full.errors.find("can be written again"), std::string::npos) << full.errors;

  RecordingLog log;
  const SqliteStore store(path, log);
  EXPECT_EQ(log.lines.size(), 0U);
  EXPECT_EQ(store.integerForKey("before"), 1);
  EXPECT_EQ(store.integerForKey("after"), 1);
  EXPECT_EQ(store.stringForKey("large19").value_or("").size(), 8192U);
}

TEST(SettingsInPrograms, ReadAndGoOnInMemoryWhereTheyMayNotWrite) {
  const TempDirectory folder;
  const std::string path = folder.file("settings.db");
  {
    RecordingLog log;
    SqliteStore store(path, log);
    store.setInteger("counter", 41);
  }
  // Everybody may look, nobody may write.
  chmod(path.c_str(), 0444);
  chmod(folder.path().c_str(), 0555);
  const Finished existing = writer("strip", path);
  const Finished missing = writer("strip", folder.file("new/settings.db"));
  chmod(folder.path().c_str(), 0700);

  for (const auto& [run, counted] : {std::pair{&existing, "42\n"}, std::pair{&missing, "1\n"}}) {
    EXPECT_EQ(run->exitCode, 0);
    EXPECT_EQ(run->output, counted) << run->errors;
    EXPECT_EQ(std::count(run->errors.begin(), run->errors.end(), '\n'), 1) << run->errors;
    EXPECT_NE(run->errors.find("until the program ends"), std::string::npos) << run->errors;
  }
}

}  // namespace
}  // namespace endpin
