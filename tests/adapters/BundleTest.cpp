#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "adapters/bundle/FileBundle.h"
#include "tests/fakes/FakePlatform.h"
#include "tests/support/TempDirectory.h"

namespace endpin {
namespace {

TEST(BundleTest, TextsComeFromTheNearestLanguageThatCanBeRead) {
  const testing::TempDirectory folder;
  for (const char* directory : {"texts/Localizable/ko.json", "texts/Other"}) {
    std::filesystem::create_directories(folder.file(directory));
  }
  const auto write = [&](const std::string& name, const char* json) {
    std::ofstream(folder.file("texts/" + name + ".json")) << json;
  };
  write("Localizable/en", R"({"hello": "Hello", "only": "English only"})");
  write("Localizable/pt", R"({"hello": "Olá"})");
  write("Localizable/pt-BR", R"({"hello": "Oi"})");
  write("Localizable/fr", R"({"hello": )");
  write("Localizable/it", R"({"hello": 5})");
  write("Other/en", R"({"hello": "Other hello"})");
  const struct {
    const char* language;
    const char* key;
    const char* value;
    const char* table;
    const char* text;
    std::size_t lines;  // in the log, of two questions
  } rows[] = {
      {"pt-BR", "hello", "", "", "Oi", 0},
      {"pt-PT", "hello", "", "", "Olá", 0},
      {"pt", "only", "", "", "English only", 0},
      {"xx", "hello", "", "", "Hello", 0},
      {"", "hello", "", "", "Hello", 0},
      {"en", "hello", "", "Other", "Other hello", 0},
      {"en", "absent", "", "", "absent", 0},
      {"en", "absent", "given", "", "given", 0},
      {"en", "hello", "", "NoSuchTable", "hello", 0},
      {"fr", "hello", "", "", "Hello", 1},
      {"it", "absent", "", "", "absent", 1},
      {"ko", "hello", "", "", "Hello", 1},
  };
  for (const auto& row : rows) {
    fakes::FakeLog log;
    const FileBundle bundle({folder.path().string(), row.language, "1.2.3"}, log);
    for (int time = 0; time < 2; ++time) {
      EXPECT_EQ(bundle.localizedString(row.key, row.value, row.table), row.text) << row.language;
    }
    EXPECT_EQ(log.lines.size(), row.lines) << row.language << ' ' << row.key;
  }
}

TEST(LanguageTag, FollowsTheNameOfTheLocale) {
  for (const auto& [locale, tag] : {std::pair("de_AT.UTF-8", "de-AT"),
                                    {"ja", "ja"},
                                    {"C", "en"},
                                    {"C.UTF-8", "en"},
                                    {"", "en"},
                                    {"ca_ES.UTF-8@valencia", "ca-ES"},
                                    {"zh_CN", "zh-Hans"},
                                    {"zh_TW.Big5", "zh-Hant"}}) {
    EXPECT_EQ(languageTag(locale), tag) << locale;
  }
}

}  // namespace
}  // namespace endpin
