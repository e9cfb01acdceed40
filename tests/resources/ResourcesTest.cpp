// What the build made from the sources of pictures, sound and texts: nothing that the code asks for
// by name is missing, and nothing is a stand-in.
#include <gtest/gtest.h>
#include <sndfile.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>
#include <string>
#include <utility>
#include <vector>

#include "calibration/Presets.h"
#include "calibration/TemperamentName.h"

namespace endpin {
namespace {

namespace fs = std::filesystem;
using nlohmann::json;

std::string contents(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

// Width and height in pixels from a PNG's header; zeros when it is none.
std::pair<std::uint32_t, std::uint32_t> pngSize(const fs::path& path) {
  const std::string bytes = contents(path);
  if (bytes.size() < 24 || bytes.substr(1, 3) != "PNG") return {};
  const auto number = [&](std::size_t at) {
    std::uint32_t value = 0;
    for (std::size_t i = 0; i < 4; ++i)
      value = value << 8U | static_cast<unsigned char>(bytes[at + i]);
    return value;
  };
  return {number(16), number(20)};
}

TEST(ResourcesTest, EveryPictureIsThereAtOneAndTwoPixelsAPoint) {
  std::vector<std::string> names = {"yellow64", "green64",        "yellow128",
                                    "green128", "selectedFreqBg", "cello"};
  for (const Preset& preset : kPresets) {
    for (const std::string chart : {preset.phoneChart, preset.padChart}) {
      names.push_back(fs::path(chart).stem());
    }
  }
  for (int string = 0; string < 4; ++string) {
    constexpr std::array<const char*, 4> kOrdinals = {"1st", "2nd", "3rd", "4th"};
    names.push_back("ring" + std::to_string(string + 1));
    for (const char* variant : {"", "_5", "_6", "_6plus", "_iPad", "_iPad_Pro"}) {
      names.push_back(kOrdinals[static_cast<std::size_t>(string)] + std::string("_string") +
                      variant);
    }
  }
  EXPECT_EQ(names.size(), 6U + 18U + 28U);
  const fs::path pictures = fs::path(ENDPIN_RESOURCES) / "pictures";
  for (const std::string& name : names) {
    const auto [width, height] = pngSize(pictures / (name + ".png"));
    const auto [width2, height2] = pngSize(pictures / (name + "@2x.png"));
    EXPECT_GT(width, 0U) << name;
    EXPECT_EQ(width2, 2 * width) << name;
    EXPECT_EQ(height2, 2 * height) << name;
  }
}

TEST(ResourcesTest, ChartsShowTheFrequenciesOfTheirCalibration) {
  const fs::path output =
      fs::temp_directory_path() / ("chart-" + std::to_string(getpid()) + ".svg");
  const auto draw = [&](const char* a4) {
    const std::string command = std::string("LC_ALL=de_DE.UTF-8 '") + ENDPIN_CHART_GENERATOR +
                                "' '" + ENDPIN_CHART_TEMPLATE + "' '" + a4 + "' '" +
                                output.string() + "' 2>/dev/null";
    return std::system(command.c_str());
  };
  ASSERT_EQ(draw("415"), 0);
  const std::string drawing = contents(output);
  for (const char* text : {"415", "207.5", "138.5", "92.4", "61.7"}) {
    EXPECT_NE(drawing.find(text), std::string::npos) << text;
  }
  EXPECT_EQ(drawing.find("@"), std::string::npos) << "a mark was left";
  for (const char* bad : {"abc", "440.5", "", "-1"}) EXPECT_NE(draw(bad), 0) << bad;
  fs::remove(output);
}

TEST(ResourcesTest, TheBeepIsShortCleanAndSoftAtBothEnds) {
  SF_INFO info{};
  SNDFILE* file = sf_open(ENDPIN_RESOURCES "/beep-full.mp3", SFM_READ, &info);
  ASSERT_NE(file, nullptr);
  std::vector<float> samples(static_cast<std::size_t>(info.frames * info.channels));
  EXPECT_EQ(sf_readf_float(file, samples.data(), info.frames), info.frames);
  sf_close(file);
  const double seconds = static_cast<double>(info.frames) / info.samplerate;
  EXPECT_GT(seconds, 0.1);
  EXPECT_LT(seconds, 0.35);
  const auto loudest = std::max_element(samples.begin(), samples.end(),
                                        [](float a, float b) { return std::abs(a) < std::abs(b); });
  EXPECT_GT(std::abs(*loudest), 0.3F) << "heard beside a cello";
  EXPECT_LT(std::abs(*loudest), 0.9F) << "with headroom";
  EXPECT_LT(std::abs(samples.front()), 0.01F);
  EXPECT_LT(std::abs(samples.back()), 0.01F);
}

std::size_t placeholders(const std::string& text) {
  std::size_t count = 0;
  for (auto at = text.find("%@"); at != std::string::npos; at = text.find("%@", at + 2)) ++count;
  return count;
}

TEST(ResourcesTest, EveryLanguageHasEveryText) {
  for (const std::string table : {"Localizable", "RatingPromptLocalizable"}) {
    const fs::path folder = fs::path(ENDPIN_RESOURCES) / "texts" / table;
    const json english = json::parse(contents(folder / "en.json"));
    for (const char* tag :
         {"en", "es", "de", "fr", "it", "pt", "nl", "pl", "ja", "ko", "zh-Hans"}) {
      const json texts = json::parse(contents(folder / (std::string(tag) + ".json")));
      EXPECT_EQ(texts.size(), english.size()) << table << " " << tag;
      for (const auto& [key, text] : english.items()) {
        ASSERT_TRUE(texts.contains(key)) << table << " " << tag << " " << key;
        const auto translated = texts.at(key).get<std::string>();
        EXPECT_FALSE(translated.empty()) << tag << " " << key;
        EXPECT_EQ(placeholders(translated), placeholders(text.get<std::string>()))
            << tag << " " << key;
      }
    }
  }
}

TEST(ResourcesTest, EveryTextThatTheCoreLooksUpExists) {
  const json texts = json::parse(contents(ENDPIN_RESOURCES "/texts/Localizable/en.json"));
  std::vector<std::string> keys = {"CalibrationTitle",    "HzTitle",
                                   "MicSensitivityTitle", "SoundNotificationTitle",
                                   "StringSoundsTitle",   "FrequencyChartTitle",
                                   "TunerAboutMsg2",      "TunerAboutCongratsMessage"};
  for (std::size_t i = 1; i < kTemperaments.size(); ++i) keys.emplace_back(kTemperaments[i].key);
  for (const std::string& key : keys) EXPECT_TRUE(texts.contains(key)) << key;
}

}  // namespace
}  // namespace endpin
