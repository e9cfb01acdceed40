// What the build made from the sources of pictures, sound and texts: nothing that the code asks for
// by name is missing, and nothing is a stand-in.
#include <gtest/gtest.h>

#include <QImageReader>
#include <QRegularExpression>
#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <nlohmann/json.hpp>
#include <set>
#include <string>
#include <vector>

#include "calibration/Presets.h"
#include "calibration/TemperamentName.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/TempDirectory.h"
#include "tests/support/Tone.h"

namespace endpin {
namespace {

const std::filesystem::path kResources = ENDPIN_RESOURCES;

std::string contentsOf(const std::filesystem::path& path) {
  std::ifstream file(path);
  return {std::istreambuf_iterator<char>(file), {}};
}

TEST(ResourcesTest, EveryPictureIsThereAtOneAndTwoPixelsAPoint) {
  std::vector<std::string> names = {"yellow64",       "green64", "yellow128", "green128",
                                    "selectedFreqBg", "cello",   "ring1",     "ring2",
                                    "ring3",          "ring4"};
  for (const Preset& preset : kPresets) {
    for (const char* chart : {preset.phoneChart, preset.padChart}) {
      names.push_back(std::filesystem::path(chart).stem());
    }
  }
  for (const std::string string : {"1st", "2nd", "3rd", "4th"}) {
    for (const char* screen : {"", "_5", "_6", "_6plus", "_iPad", "_iPad_Pro"}) {
      names.push_back(string + "_string" + screen);
    }
  }
  for (const std::string& name : names) {
    const auto size = [&](const char* scale) {
      return QImageReader((kResources / "pictures" / (name + scale + ".png")).c_str(), "PNG")
          .size();
    };
    EXPECT_FALSE(size("").isEmpty()) << name;
    EXPECT_EQ(size("@2x"), 2 * size("")) << name;
  }
}

TEST(ResourcesTest, ChartsShowTheFrequenciesOfTheirCalibration) {
  const testing::TempDirectory folder;
  const std::string output = folder.file("chart.svg");
  const auto draw = [&](const char* a4) {
    return testing::runToEnd({ENDPIN_CHART_GENERATOR, ENDPIN_CHART_TEMPLATE, a4, output},
                             std::chrono::seconds(10), {{"LC_ALL", "de_DE.UTF-8"}})
        .exitCode;
  };
  ASSERT_EQ(draw("415"), 0);
  const std::string drawing = contentsOf(output);
  EXPECT_NE(drawing.find("415"), std::string::npos);
  std::size_t at = 0;
  for (const char* text : {">61.7<", ">92.4<", ">138.5<", ">207.5<"}) {  // from the left
    at = drawing.find(text, at);
    EXPECT_NE(at, std::string::npos) << text;
  }
  EXPECT_EQ(drawing.find("@"), std::string::npos) << "a mark was left";
  for (const char* bad : {"abc", "440.5", "", "-1"}) EXPECT_NE(draw(bad), 0) << bad;
}

TEST(ResourcesTest, TheBeepIsShortCleanAndSoftAtBothEnds) {
  const testing::Sound beep = testing::readSoundFile(kResources / "beep-full.mp3");
  EXPECT_GT(beep.seconds(), 0.1);
  EXPECT_LT(beep.seconds(), 0.35);
  const auto [low, high] = std::ranges::minmax(beep.samples);
  const float peak = std::max(-low, high);
  EXPECT_GT(peak, 0.3F) << "heard beside a cello";
  EXPECT_LT(peak, 0.9F) << "with headroom";
  EXPECT_LT(std::abs(beep.samples.front()), 0.01F);
  EXPECT_LT(std::abs(beep.samples.back()), 0.01F);
}

using Texts = std::map<std::string, std::string>;

Texts texts(const std::string& table, const std::string& tag) {
  return nlohmann::json::parse(contentsOf(kResources / "texts" / table / (tag + ".json")));
}

// What the screen asks for by itself: names of keys in the same line as the request, or in a title.
std::set<std::string> keysOfTheScreen() {
  const QRegularExpression key(R"re((?:Texts\.of\(|title: |\G(?!^))[^\n]*?"([A-Z]\w+)")re");
  std::set<std::string> keys;
  for (const auto& entry : std::filesystem::directory_iterator(ENDPIN_COMPONENTS)) {
    for (const auto& found : key.globalMatch(QString::fromStdString(contentsOf(entry.path())))) {
      keys.insert(found.captured(1).toStdString());
    }
  }
  return keys;
}

// A table that lacks a text shows its key: nobody may ever see one.
TEST(ResourcesTest, EveryLanguageHasEveryTextThatIsLookedUp) {
  std::set<std::string> wanted = keysOfTheScreen();
  EXPECT_GT(wanted.size(), 15U);
  wanted.insert({"CalibrationTitle", "HzTitle", "MicSensitivityTitle", "SoundNotificationTitle",
                 "StringSoundsTitle", "FrequencyChartTitle", "TunerAboutMsg2",
                 "TunerAboutCongratsMessage"});
  for (std::size_t i = 1; i < kTemperaments.size(); ++i) wanted.insert(kTemperaments[i].key);
  for (const std::string& key : wanted) {
    EXPECT_TRUE(texts("Localizable", "en").contains(key)) << key;
  }
  const QRegularExpression looseSign(" [!?:;]");  // the line could break there
  for (const std::string table : {"Localizable", "RatingPromptLocalizable"}) {
    const Texts english = texts(table, "en");
    int languages = 0;
    for (const auto& file : std::filesystem::directory_iterator(kResources / "texts" / table)) {
      const std::string tag = file.path().stem();
      const Texts translated = texts(table, tag);
      ++languages;
      EXPECT_EQ(translated.size(), english.size()) << table << " " << tag;
      for (const auto& [key, text] : english) {
        ASSERT_TRUE(translated.contains(key)) << tag << " " << key;
        const auto words = QString::fromStdString(translated.at(key));
        EXPECT_FALSE(words.isEmpty()) << tag << " " << key;
        EXPECT_EQ(words.count("%@"), QString::fromStdString(text).count("%@")) << tag << " " << key;
        EXPECT_FALSE(words.contains(looseSign)) << tag << " " << key;
      }
    }
    EXPECT_EQ(languages, 11) << table;
  }
}

}  // namespace
}  // namespace endpin
