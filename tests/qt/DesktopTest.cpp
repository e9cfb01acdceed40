// The program as a whole: what it refuses, what it hears, shows and sounds, how it ends.
#include <gtest/gtest.h>

#include <QImage>
#include <algorithm>
#include <csignal>
#include <fstream>

#include "adapters/log/Logs.h"
#include "adapters/sqlite/SqliteStore.h"
#include "desktop/GuiStart.h"
#include "rating/UsageTracker.h"
#include "tests/fakes/FakePlatform.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/PrivateSoundServer.h"
#include "tests/support/SampledCello.h"
#include "tests/support/TempDirectory.h"
#include "tests/support/Tone.h"

namespace endpin {
namespace {

using namespace std::chrono_literals;
using testing::ChildProcess;
using testing::Finished;

struct DesktopTest : ::testing::Test {
  testing::TempDirectory folder;
  // No display, no sound server, settings of its own. Leaks are looked for elsewhere: the toolkit's
  // software renderer leaves the pictures of the last window to the end of the process.
  testing::Environment environment = {{"DISPLAY", ""},
                                      {"WAYLAND_DISPLAY", ""},
                                      {"QT_QPA_PLATFORM", ""},
                                      {"LC_ALL", "C.UTF-8"},
                                      {"ASAN_OPTIONS", "detect_leaks=0"},
                                      {"PULSE_SERVER", "unix:/nonexistent"},
                                      {"XDG_RUNTIME_DIR", folder.path().string()},
                                      {"XDG_DATA_HOME", folder.path().string()}};

  Finished run(testing::Command words) {
    words.insert(words.begin(), program);
    return testing::runToEnd(words, 30s, environment);
  }
  // The program fails with one line that says this.
  void expectRefusal(int exitCode, const testing::Command& words, const std::string& named) {
    const Finished result = run(words);
    EXPECT_EQ(result.exitCode, exitCode) << named;
    EXPECT_EQ(result.output, "") << named;
    EXPECT_EQ(std::ranges::count(result.errors, '\n'), 1) << result.errors;
    EXPECT_NE(result.errors.find(named), std::string::npos) << result.errors;
  }
  // What the screen shows then; `more` are further options.
  QImage screen(const char* after = "0.3", const testing::Command& more = {}) {
    testing::Command words = {"--screenshot", folder.file("screen.png"), "--after", after};
    words.insert(words.end(), more.begin(), more.end());
    last = run(words);
    EXPECT_EQ(last.exitCode, 0) << last.errors;
    return QImage(QString::fromStdString(folder.file("screen.png")));
  }
  // Whether a program writes this within some time.
  static bool says(ChildProcess& child, const char* words) {
    const auto said = [&] { return child.errors().find(words) != std::string::npos; };
    return testing::soon(20s, [&] { return said() || !child.running(); }) && said();
  }
  // Starts the program and ends it by a signal once it has written this.
  void expectOrderlyEnd(const char* words, int signal) {
    ChildProcess child({ENDPIN, "--verbose"}, environment);
    EXPECT_TRUE(says(child, words)) << child.errors();
    child.signal(signal);
    EXPECT_EQ(child.waitFor(5s), 0) << child.errors();
  }

  const char* program = ENDPIN;
  Finished last;
};

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
  const std::pair<testing::Command, std::string> rows[] = {
      {{"--device", "phone:700"}, "phone:700"},
      {{"--device", ""}, "--device"},
      {{"--language", "xx"}, "\"xx\""},
      {{"--language", "two\nlines"}, "two?lines"},
      {{"--input", "/nonexistent.wav"}, "/nonexistent.wav"},
      {{"--panel", "kitchen"}, "kitchen"},
      {{"--after", "2"}, "--screenshot"},
      {{"--screenshot", "x.png", "--after", "nan"}, "--after"},
      {{"--size", "640x480"}, "--screenshot"},
      {{"--screenshot", "x.png", "--size", "640"}, "640"},
      {{"--screenshot", "x.png", "--size", "640x319"}, "640x319"},
      {{"--screenshot", "x.png", "--size", "9000x640"}, "9000x640"},
      {{"--loud"}, "--loud"},
  };
  for (const auto& [words, named] : rows) expectRefusal(2, words, named);
  expectRefusal(1, {"--screenshot", "/nonexistent/x.png", "--after", "0"}, "/nonexistent/x.png");
  for (const char* display : {"", ":4711"}) {
    environment["DISPLAY"] = display;
    expectRefusal(1, {}, "no display");
  }
}

TEST_F(DesktopTest, ShowsTheStringOfAFileOnADeviceOfTheList) {
  const Finished list = run({"--list-devices"});
  EXPECT_EQ(list.exitCode, 0);
  EXPECT_EQ(std::ranges::count(list.output, '\n'), 21);
  EXPECT_NE(list.output.find("phone:667     375 x 667\n"), std::string::npos) << list.output;
  const QImage silent = screen("0.3", {"--device", "phone:667"});
  EXPECT_EQ(silent.size(), QSize(750, 1334));
  EXPECT_EQ(screen("0", {"--size", "1280x720"}).size(), QSize(2560, 1440));
  EXPECT_EQ(greenPixels(silent), 0);
  testing::writeWav(folder.file("d3.wav"), testing::bowedTone(48000, 6, 146.8323839594813));
  EXPECT_GT(greenPixels(screen("3", {"--input", folder.file("d3.wav")})), 500) << "lamp and ring";
}

// A second launch: at the first one the beep is still off.
TEST_F(DesktopTest, ABowedStringLightsTheLampAndBeepsOnce) {
  if (!testing::whyNoSampledCello().empty()) GTEST_SKIP() << testing::whyNoSampledCello();
  testing::PrivateSoundServer server;
  if (!server.start()) GTEST_SKIP() << server.reason();
  for (const auto& [name, value] : server.environment()) environment[name] = value;
  const std::string file = server.folder().file("d3.wav");
  testing::writeWav(file, testing::sampledCello(
                              {.midiNote = 50, .frequency = testing::kCelloStrings[1].frequency}));
  const testing::Command keep = {"--store", folder.file("settings.db")};
  screen("0", keep);
  const ChildProcess speaker = server.record("speaker.monitor");
  const ChildProcess bow = server.playIntoMicrophone(file);
  EXPECT_GT(greenPixels(screen("5", keep)), 500);
  const double beep = testing::soundingSeconds(testing::PrivateSoundServer::recorded(speaker));
  EXPECT_GT(beep, 0.15);
  EXPECT_LT(beep, 0.30) << "one beep lasts 0.22 s";
}

#ifdef ENDPIN_DEMO
TEST_F(DesktopTest, TheDemonstrationShowsAStringInTuneAndListensToNothing) {
  program = ENDPIN_DEMO;
  EXPECT_GT(greenPixels(screen("0.3", {"--verbose", "--device", "tablet:1366"})), 2000);
  EXPECT_NE(last.errors.find("Demo mode ON. No sound detection available."), std::string::npos);
  EXPECT_EQ(last.errors.find("Sound detection started"), std::string::npos);
}
#endif

#ifdef ENDPIN_LOOK_UPS
// The one request, of somebody who has used this version for a while.
TEST_F(DesktopTest, AsksTheNetworkOnceUnlessThatIsSwitchedOff) {
  environment["QT_QPA_PLATFORM"] = "offscreen";
  environment["LD_PRELOAD"] = ENDPIN_LOOK_UPS;
  environment["ENDPIN_LOOK_UPS"] = folder.file("look-ups");
  const std::string file = folder.file("kept.db");
  NullLog log;
  for (const auto& [word, lookedUp] :
       {std::pair("--no-network", false), std::pair("--verbose", true)}) {
    {
      SqliteStore store(file, log);
      store.setBool("NewFirstLaunchCello", true);
      store.setString(UsageTracker::kCurrentVersion, ENDPIN_VERSION);
      store.setDouble(UsageTracker::kFirstUseDate, 1);
      store.setInteger(UsageTracker::kUseCount, 50);
      store.synchronize();
    }
    ChildProcess child({ENDPIN, "--store", file, word}, environment);
    const auto counted = [&] {
      return SqliteStore(file, log).integerForKey(UsageTracker::kUseCount) == 51;
    };
    EXPECT_TRUE(testing::soon(20s, counted)) << child.errors();
    const auto seen = [&] { return std::filesystem::exists(folder.file("look-ups")); };
    EXPECT_EQ(testing::soon(lookedUp ? 20s : 1s, seen), lookedUp) << word;
    child.signal(SIGTERM);
    EXPECT_EQ(child.waitFor(5s), 0) << child.errors();
  }
  std::ifstream all(folder.file("look-ups"));
  EXPECT_EQ(std::string(std::istreambuf_iterator<char>(all), {}), "example.com\n");
}
#endif

// Neither a use nor a run, and nothing asked or sent: the rating prompt is not there.
TEST_F(DesktopTest, APictureIsNoUse) {
  screen();
  EXPECT_FALSE(std::filesystem::exists(folder.file("endpin"))) << "settings of the user";
  const std::string file = folder.file("own.db");
  screen("0.3", {"--store", file});
  NullLog log;
  const SqliteStore own(file, log);
  EXPECT_TRUE(own.boolForKey("NewFirstLaunchCello"));
  EXPECT_FALSE(own.stringForKey("windowWidth"));
  EXPECT_EQ(own.integerForKey(UsageTracker::kUseCount), 0);
  EXPECT_EQ(own.doubleForKey(UsageTracker::kFirstUseDate), 0);
}

// The log is a local of main, and the toolkit has its say to the end of the process.
TEST(GuiStart, TheLogHearsTheToolkitAsLongAsThereIsOne) {
  char name[] = "endpin";
  char* arguments[] = {name, nullptr};
  Options options;
  options.screenshot = "no display is needed";
  auto log = std::make_unique<fakes::FakeLog>();
  {
    const Gui gui(arguments, options, *log);
    qWarning("heard");
    EXPECT_EQ(log->count("heard"), 1);
  }
  log.reset();
  qWarning("to nobody");
}

TEST_F(DesktopTest, StartsWithDefaultsOverDamagedSettings) {
  std::ofstream(folder.file("settings.db")) << "no database";
  screen("0.3", {"--store", folder.file("settings.db")});
  EXPECT_EQ(std::ranges::count(last.errors, '\n'), 1) << last.errors;
  EXPECT_NE(last.errors.find("settings.db.corrupt-"), std::string::npos) << last.errors;
}

TEST_F(DesktopTest, EndsInOrderWhenAsked) {
  environment["QT_QPA_PLATFORM"] = "offscreen";
  for (const int number : {SIGTERM, SIGINT}) expectOrderlyEnd("Sound detection started", number);
}

// A compositor without a seat: there is nothing to point or type with.
TEST_F(DesktopTest, ShowsItselfOnWaylandWithoutAnyInput) {
  ChildProcess compositor({"weston", "--backend=headless-backend.so", "--socket=test"},
                          environment);
  if (!says(compositor, "weston-desktop-shell")) GTEST_SKIP() << "weston does not start";
  environment["WAYLAND_DISPLAY"] = "test";
  environment["QT_QPA_PLATFORM"] = "wayland";
  expectOrderlyEnd("First frame", SIGTERM);
}

// Chinese and Japanese draw some characters in different ways. Which way is right depends on the
// texts, not on what the rest of the desktop is written in.
TEST_F(DesktopTest, DrawsTheCharactersOfTheLanguageThatItSpeaks) {
  const auto font = [](const char* language) {
    return testing::runToEnd({"fc-match", std::string("sans:lang=") + language}, 10s).output;
  };
  if (font("zh-cn") == font("ja")) GTEST_SKIP() << "no fonts that tell Chinese from Japanese";
  std::vector<QImage> sheets;
  for (const auto& [locale, tag] : {std::pair("zh_CN", "zh-TW"), {"ja_JP", "zh-CN"}}) {
    environment["LC_ALL"] = std::string(locale) + ".UTF-8";
    const QImage picture = screen("2", {"--language", tag, "--panel", "about"});  // at rest
    sheets.push_back(picture.copy(0, picture.height() / 2, picture.width(), 600));
  }
  EXPECT_EQ(sheets[0], sheets[1]);
}

TEST_F(DesktopTest, WritesNumbersWithAPointInALocaleWithAComma) {
  const Finished made = testing::runToEnd(
      {"localedef", "-i", "de_DE", "-f", "UTF-8", folder.file("de_DE.UTF-8")}, 60s);
  environment["LOCPATH"] = folder.path().string();
  environment["LC_ALL"] = "de_DE.UTF-8";
  const Finished comma = testing::runToEnd({"env", "printf", "%.1f", "1,5"}, 5s, environment);
  if (comma.output != "1,5") GTEST_SKIP() << "no such locale can be made here: " << made.errors;
  screen("0.3", {"--verbose"});
  EXPECT_NE(last.errors.find("\n220.000000\n"), std::string::npos) << last.errors;
  EXPECT_EQ(last.errors.find("220,"), std::string::npos) << last.errors;
}

}  // namespace
}  // namespace endpin
