#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "adapters/bundle/FileBundle.h"
#include "tests/fakes/FakePlatform.h"
#include "tests/support/TempDirectory.h"

namespace endpin {
namespace {

TEST(BundleTest, TextsComeFromTheNearestTableThatCanBeRead) {
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
  write("Localizable/zh-Hans", R"({"hello": "你好"})");
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
      {"pt", "only", "", "", "only", 0},  // a missing text shows its key, in every language
      {"zh-Hant", "hello", "", "", "你好", 0},
      {"", "hello", "", "", "Hello", 0},
      {"en", "hello", "", "Other", "Other hello", 0},
      {"en", "absent", "given", "", "given", 0},
      {"en", "hello", "", "NoSuchTable", "hello", 0},
      {"fr", "hello", "", "", "Hello", 1},  // a table that cannot be read is none
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
                                    {"PT-br", "pt-BR"},
                                    {"C", "en"},
                                    {"", "en"},
                                    {"ca_ES.UTF-8@valencia", "ca-ES"},
                                    {"zh", "zh-Hans"},
                                    {"zh_CN", "zh-Hans"},
                                    {"zh_TW.Big5", "zh-Hant"},
                                    {"zh-Hant", "zh-Hant"},
                                    {"zh-hans-HK", "zh-Hans"}}) {
    EXPECT_EQ(languageTag(locale), tag) << locale;
  }
}

// The variables as other programs understand them: LC_ALL before LC_MESSAGES before LANG, and
// LANGUAGE before these, unless they ask for no language at all.
TEST(EnvironmentLanguage, IsTheFirstOneWanted) {
  const testing::TempDirectory folder;
  std::filesystem::create_directories(folder.file("texts/Localizable"));
  for (const char* language : {"de", "en", "pt", "zh-Hans"}) {
    std::ofstream(folder.file("texts/Localizable/") + language + ".json") << "{}";
  }
  const struct {
    const char *all, *messages, *lang, *languages, *tag;
  } rows[] = {
      {"", "", "de_AT.UTF-8", "", "de-AT"},
      {"", "pt_BR.UTF-8", "de_AT.UTF-8", "", "pt-BR"},
      {"de_DE.UTF-8", "pt_BR.UTF-8", "en_GB.UTF-8", "", "de-DE"},
      {"", "", "de_DE.UTF-8", "pt_BR:en", "pt-BR"},
      {"", "", "de_DE.UTF-8", "ca:sv_SE::pt", "pt"},
      {"", "", "en_US.UTF-8", "zh_TW:de", "zh-Hant"},  // its readers read the other script
      {"", "", "de_DE.UTF-8", "ca:sv", "en"},
      {"C", "", "de_DE.UTF-8", "pt", "en"},
      {"", "", "C.UTF-8", "pt", "en"},
      {"", "", "xx_XX.UTF-8", "", "en"},
  };
  for (const auto& row : rows) {
    setenv("LC_ALL", row.all, 1);
    setenv("LC_MESSAGES", row.messages, 1);
    setenv("LANG", row.lang, 1);
    setenv("LANGUAGE", row.languages, 1);
    EXPECT_EQ(environmentLanguage(folder.path().string()), row.tag)
        << row.lang << ' ' << row.languages;
  }
}

}  // namespace
}  // namespace endpin
