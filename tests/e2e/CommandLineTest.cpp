// Bad input at the command line: one clear line on standard error and a failing exit code, whatever
// is wrong, and never a crash.
#include <gtest/gtest.h>
#include <sndfile.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <set>
#include <vector>

#include "tests/e2e/Listening.h"
#include "tests/support/TempDirectory.h"
#include "tests/support/Tone.h"

namespace endpin::testing {
namespace {

using namespace std::chrono_literals;

class CommandLine : public ::testing::Test {
 protected:
  CommandLine() {
    const Sound tone = bowedTone(48000.0, 2.0, 220.0);
    writeWav(path("good.wav"), tone);
    writeWav(path("no frames.wav"), silence(48000.0, 0.0));
    writeSoundFile(path("half.flac"), tone, SF_FORMAT_FLAC | SF_FORMAT_PCM_16);
    writeWav(path("half.wav"), tone);
    writeWav(path("header.wav"), tone);
    for (const char* half : {"half.flac", "half.wav"}) {
      std::filesystem::resize_file(path(half), std::filesystem::file_size(path(half)) / 2);
    }
    std::filesystem::resize_file(path("header.wav"), 30);
    std::filesystem::create_directory(path("folder.wav"));
    std::ofstream(path("text.wav")) << "This is no sound.\nIt is a letter.\n";
    std::ofstream(path("empty.wav"));
  }

  std::string path(const std::string& name) const { return folder_.file(name); }

  // No sound server and no settings of the machine it runs on.
  Finished run(const std::vector<std::string>& arguments) const {
    return runToEnd(endpin(arguments), 10s,
                    {{"HOME", folder_.path().string()},
                     {"XDG_RUNTIME_DIR", folder_.path().string()},
                     {"XDG_DATA_HOME", path("data")},
                     {"XDG_CONFIG_HOME", path("config")},
                     {"PULSE_SERVER", "unix:" + path("no-such-socket")}});
  }

  TempDirectory folder_;
};

TEST_F(CommandLine, BadInputGetsOneLineAndAFailingExitCode) {
  struct Row {
    const char* what;
    std::vector<std::string> arguments;
    std::set<int> exitCodes;  // 2: the command is wrong. 1: it is right, but cannot be done.
  };
  // A bad file may count as either.
  const std::set<int> either = {1, 2};
  const auto input = [this](const char* name) {
    return std::vector<std::string>{"listen", "--json", "--input", path(name)};
  };
  const auto a4 = [this](const char* value) {
    return std::vector<std::string>{"listen", "--json", "--input", path("good.wav"), "--a4", value};
  };
  const Row rows[] = {
      {"missing file", input("nowhere.wav"), either},
      {"folder", input("folder.wav"), either},
      {"text", input("text.wav"), either},
      {"empty file", input("empty.wav"), either},
      {"sound without samples", input("no frames.wav"), either},
      {"cut inside the header", input("header.wav"), either},
      {"cut inside the samples", input("half.wav"), either},
      {"cut flac", input("half.flac"), either},
      {"file name missing", {"listen", "--input"}, {2}},
      {"A4 with a fraction", a4("440.5"), {2}},
      {"A4 in letters", a4("abc"), {2}},
      {"A4 empty", a4(""), {2}},
      {"A4 negative", a4("-3"), {2}},
      {"A4 zero", a4("0"), {2}},
      {"A4 with a unit", a4("440Hz"), {2}},
      {"A4 beyond any integer", a4("99999999999999999999"), {2}},
      {"A4 of the table with a fraction", {"frequencies", "--a4", "440.5"}, {2}},
      {"string with a line end",
       {"tone", "--string", "A\n3", "--seconds", "1", "--output", path("a.wav")},
       {2}},
      {"unknown option", {"listen", "--bogus"}, {2}},
      {"unknown command", {"sing"}, {2}},
      {"unknown device", {"listen", "--json", "--input-device", "no-such-device"}, {1}},
      {"no microphone", {"listen", "--json"}, {1}},
  };
  for (const Row& row : rows) {
    const Finished finished = run(row.arguments);
    ASSERT_TRUE(finished.exitCode) << row.what << " never ended";
    EXPECT_EQ(row.exitCodes.count(*finished.exitCode), 1U)
        << row.what << ": " << *finished.exitCode << " " << finished.errors;
    EXPECT_EQ(std::count(finished.errors.begin(), finished.errors.end(), '\n'), 1)
        << row.what << ": " << finished.errors;
    EXPECT_GT(finished.errors.size(), 10U) << row.what;
    EXPECT_NO_THROW(parseTicks(finished.output)) << row.what;
    EXPECT_TRUE(finished.output.empty() || finished.output.back() == '\n') << row.what;
  }
}

TEST_F(CommandLine, GoodInputIsSilentOnStandardError) {
  for (const char* a4 : {"392", "437", "440", "466"}) {
    const Finished finished = run({"listen", "--json", "--input", path("good.wav"), "--a4", a4});
    EXPECT_EQ(finished.exitCode, 0) << a4;
    EXPECT_EQ(finished.errors, "") << a4;
    EXPECT_EQ(parseTicks(finished.output).size(), 20U) << a4;
  }
}

}  // namespace
}  // namespace endpin::testing
