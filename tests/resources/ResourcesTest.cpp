// What the build made from the sources of pictures, sound and texts: nothing that the code asks for
// by name is missing, and nothing is a stand-in.
#include <gtest/gtest.h>

#include <QImageReader>
#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>
#include <regex>
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

std::string contents(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
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
  const std::string drawing = contents(output);
  for (const char* text : {"415", "207.5", "138.5", "92.4", "61.7"}) {
    EXPECT_NE(drawing.find(text), std::string::npos) << text;
  }
  EXPECT_EQ(drawing.find("@"), std::string::npos) << "a mark was left";
  for (const char* bad : {"abc", "440.5", "", "-1"}) EXPECT_NE(draw(bad), 0) << bad;
}

TEST(ResourcesTest, TheBeepIsShortCleanAndSoftAtBothEnds) {
  const testing::Sound beep = testing::readSoundFile(kResources / "beep-full.mp3");
  EXPECT_GT(beep.seconds(), 0.1);
  EXPECT_LT(beep.seconds(), 0.35);
  float peak = 0;
  for (const float sample : beep.samples) peak = std::max(peak, std::abs(sample));
  EXPECT_GT(peak, 0.3F) << "heard beside a cello";
  EXPECT_LT(peak, 0.9F) << "with headroom";
  EXPECT_LT(std::abs(beep.samples.front()), 0.01F);
  EXPECT_LT(std::abs(beep.samples.back()), 0.01F);
}

TEST(ResourcesTest, EveryLanguageHasEveryText) {
  const auto placeholders = [](const std::string& text) {
    const std::regex mark("%@");
    return std::distance(std::sregex_iterator(text.begin(), text.end(), mark), {});
  };
  for (const char* table : {"Localizable", "RatingPromptLocalizable"}) {
    const auto texts = [&](const std::string& tag) {
      return nlohmann::json::parse(contents(kResources / "texts" / table / (tag + ".json")))
          .get<std::map<std::string, std::string>>();
    };
    const auto english = texts("en");
    for (const char* tag : {"es", "de", "fr", "it", "pt", "nl", "pl", "ja", "ko", "zh-Hans"}) {
      const auto translated = texts(tag);
      EXPECT_EQ(translated.size(), english.size()) << table << " " << tag;
      for (const auto& [key, text] : english) {
        ASSERT_TRUE(translated.contains(key)) << tag << " " << key;
        EXPECT_FALSE(text.empty() || translated.at(key).empty()) << tag << " " << key;
        EXPECT_EQ(placeholders(translated.at(key)), placeholders(text)) << tag << " " << key;
      }
    }
  }
}

TEST(ResourcesTest, EveryTextThatTheCoreLooksUpExists) {
  const auto texts = nlohmann::json::parse(contents(kResources / "texts/Localizable/en.json"));
  std::vector<const char*> keys = {"CalibrationTitle",    "HzTitle",
                                   "MicSensitivityTitle", "SoundNotificationTitle",
                                   "StringSoundsTitle",   "FrequencyChartTitle",
                                   "TunerAboutMsg2",      "TunerAboutCongratsMessage"};
  for (std::size_t i = 1; i < kTemperaments.size(); ++i) keys.push_back(kTemperaments[i].key);
  for (const char* key : keys) EXPECT_TRUE(texts.contains(key)) << key;
}

}  // namespace
}  // namespace endpin
