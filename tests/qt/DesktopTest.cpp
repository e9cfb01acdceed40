// The program as a whole: what it refuses, what it shows, how it ends.
#include <gtest/gtest.h>

#include <QImage>
#include <algorithm>
#include <chrono>
#include <csignal>
#include <fstream>
#include <thread>

#include "tests/support/ChildProcess.h"
#include "tests/support/TempDirectory.h"
#include "tests/support/Tone.h"

namespace endpin {
namespace {

using namespace std::chrono_literals;
using testing::Environment;
using testing::Finished;

struct DesktopTest : ::testing::Test {
  testing::TempDirectory folder;
  // No display, no sound server, settings of its own. Leaks are looked for elsewhere: the toolkit's
  // software renderer leaves the pictures of the last window to the end of the process.
  Environment environment = {{"DISPLAY", ""},
                             {"WAYLAND_DISPLAY", ""},
                             {"QT_QPA_PLATFORM", ""},
                             {"LC_ALL", "C.UTF-8"},
                             {"ASAN_OPTIONS", "detect_leaks=0"},
                             {"PULSE_SERVER", "unix:/nonexistent"},
                             {"XDG_RUNTIME_DIR", folder.path().string()},
                             {"XDG_DATA_HOME", folder.path().string()}};

  Finished run(std::vector<std::string> words) {
    words.insert(words.begin(), ENDPIN);
    return testing::runToEnd(words, 30s, environment);
  }
  Finished picture(std::vector<std::string> words, const std::string& after = "0.3") {
    words.insert(words.end(), {"--screenshot", folder.file("screen.png"), "--after", after});
    return run(words);
  }
  // Whether a program has written this within some time.
  static bool says(testing::ChildProcess& child, const char* words) {
    const auto deadline = std::chrono::steady_clock::now() + 20s;
    while (child.errors().find(words) == std::string::npos) {
      if (!child.running() || std::chrono::steady_clock::now() > deadline) return false;
      std::this_thread::sleep_for(10ms);
    }
    return true;
  }
  QImage screen() const { return QImage(QString::fromStdString(folder.file("screen.png"))); }
};

int linesOf(const std::string& text) {
  return static_cast<int>(std::count(text.begin(), text.end(), '\n'));
}

// Pixels in the green that stands for a string in tune, and for nothing else.
int greenPixels(const QImage& image) {
  int count = 0;
  for (int y = 0; y < image.height(); ++y) {
    for (int x = 0; x < image.width(); ++x) {
      const QColor colour = image.pixelColor(x, y);
      count += colour.green() > 190 && colour.red() < 130 && colour.blue() < 190 ? 1 : 0;
    }
  }
  return count;
}

TEST_F(DesktopTest, RefusesWhatMakesNoSenseInOneLine) {
  std::ofstream(folder.file("text.wav")) << "no sound";
  const struct {
    std::vector<std::string> words;
    const char* named;  // in the line
  } rows[] = {
      {{"--device", "phone:700"}, "phone:700"},
      {{"--device", ""}, "--device"},
      {{"--language", "xx"}, "\"xx\""},
      {{"--language", "english"}, "english"},
      {{"--language", "two\nlines"}, "two?lines"},
      {{"--input", "no\nfile"}, "no?file"},
      {{"--input", "/nonexistent.wav"}, "/nonexistent.wav"},
      {{"--input", folder.path().string()}, folder.path().c_str()},
      {{"--input", folder.file("text.wav")}, "text.wav"},
      {{"--panel", "kitchen"}, "kitchen"},
      {{"--after", "2"}, "--screenshot"},
      {{"--screenshot", "x.png", "--after", "soon"}, "--after"},
      {{"--screenshot", "x.png", "--after", "nan"}, "--after"},
      {{"--loud"}, "--loud"},
  };
  for (const auto& row : rows) {
    const Finished result = run(row.words);
    EXPECT_EQ(result.exitCode, 2) << row.named;
    EXPECT_EQ(result.output, "") << row.named;
    EXPECT_EQ(linesOf(result.errors), 1) << result.errors;
    EXPECT_NE(result.errors.find(row.named), std::string::npos) << result.errors;
  }
}

TEST_F(DesktopTest, SaysThatThereIsNoDisplay) {
  for (const char* display : {"", ":4711"}) {
    environment["DISPLAY"] = display;
    const Finished result = run({});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_EQ(linesOf(result.errors), 1) << result.errors;
    EXPECT_NE(result.errors.find("no display"), std::string::npos) << result.errors;
  }
}

TEST_F(DesktopTest, ListsDevices) {
  const Finished result = run({"--list-devices"});
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_EQ(linesOf(result.output), 21);
  EXPECT_NE(result.output.find("phone:667     375 x 667\n"), std::string::npos) << result.output;
}

TEST_F(DesktopTest, ShowsTheStringThatItHears) {
  ASSERT_EQ(picture({"--device", "phone:667"}).exitCode, 0);
  EXPECT_EQ(screen().size(), QSize(750, 1334));
  EXPECT_EQ(greenPixels(screen()), 0) << "silence";

  testing::writeWav(folder.file("d3.wav"), testing::bowedTone(48000, 6, 146.8323839594813));
  const Finished heard = picture({"--device", "phone:667", "--input", folder.file("d3.wav")}, "3");
  EXPECT_EQ(heard.exitCode, 0) << heard.errors;
  EXPECT_GT(greenPixels(screen()), 500) << "lamp and ring";
}

TEST_F(DesktopTest, ReportsAPictureThatCannotBeSaved) {
  const Finished result = run({"--screenshot", "/nonexistent/x.png", "--after", "0"});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_EQ(linesOf(result.errors), 1) << result.errors;
}

TEST_F(DesktopTest, StartsWithDefaultsOverDamagedSettings) {
  std::ofstream(folder.file("settings.db")) << "no database";
  const Finished result = picture({"--store", folder.file("settings.db")});
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_EQ(linesOf(result.errors), 1) << result.errors;
  EXPECT_NE(result.errors.find("settings.db.corrupt-"), std::string::npos) << result.errors;
}

TEST_F(DesktopTest, EndsInOrderWhenAsked) {
  environment["QT_QPA_PLATFORM"] = "offscreen";
  for (const int number : {SIGTERM, SIGINT}) {
    testing::ChildProcess child({ENDPIN, "--verbose"}, environment);
    EXPECT_TRUE(says(child, "Sound detection started"));
    child.signal(number);
    EXPECT_EQ(child.waitFor(5s), 0) << child.errors();
  }
}

// A compositor without a seat: there is nothing to point or type with.
TEST_F(DesktopTest, ShowsItselfOnWaylandWithoutAnyInput) {
  testing::ChildProcess compositor({"weston", "--backend=headless-backend.so", "--socket=test"},
                                   environment);
  if (!says(compositor, "weston-desktop-shell")) GTEST_SKIP() << "weston does not start";
  environment["WAYLAND_DISPLAY"] = "test";
  environment["QT_QPA_PLATFORM"] = "wayland";
  testing::ChildProcess child({ENDPIN, "--verbose"}, environment);
  EXPECT_TRUE(says(child, "First frame")) << child.errors();
  child.signal(SIGTERM);
  EXPECT_EQ(child.waitFor(5s), 0) << child.errors();
}

TEST_F(DesktopTest, WritesNumbersWithAPointInALocaleWithAComma) {
  const Finished made = testing::runToEnd(
      {"localedef", "-i", "de_DE", "-f", "UTF-8", folder.file("de_DE.UTF-8")}, 60s);
  environment["LOCPATH"] = folder.path().string();
  environment["LC_ALL"] = "de_DE.UTF-8";
  const Finished comma = testing::runToEnd({"env", "printf", "%.1f", "1,5"}, 5s, environment);
  if (comma.output != "1,5") GTEST_SKIP() << "no such locale can be made here: " << made.errors;

  const Finished result = picture({"--verbose"});
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_NE(result.errors.find("\n220.000000\n"), std::string::npos) << result.errors;
  EXPECT_EQ(result.errors.find("220,"), std::string::npos) << result.errors;
}

}  // namespace
}  // namespace endpin
