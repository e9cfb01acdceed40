#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <vector>

#include "adapters/bundle/FileBundle.h"
#include "tests/support/TempDirectory.h"

namespace endpin {
namespace {

struct Lines : Log {
  std::vector<std::string> lines;
  void line(std::string_view text) override { lines.emplace_back(text); }
};

struct BundleTest : ::testing::Test {
  testing::TempDirectory folder;
  Lines log;

  BundleTest() {
    write("Localizable/en", R"({"hello": "Hello", "only": "English only"})");
    write("Localizable/pt", R"({"hello": "Olá"})");
    write("Localizable/pt-BR", R"({"hello": "Oi"})");
    write("Localizable/fr", R"({"hello": )");
    write("Localizable/it", R"({"hello": 5})");
    std::filesystem::create_directory(folder.file("texts/Localizable/ko.json"));
    write("Other/en", R"({"hello": "Other hello"})");
  }

  void write(const std::string& name, const char* json) const {
    const std::filesystem::path path = folder.file("texts/" + name + ".json");
    std::filesystem::create_directories(path.parent_path());
    std::ofstream(path) << json;
  }

  FileBundle bundle(const std::string& language) {
    return FileBundle({folder.path().string(), language, "1.2.3"}, log);
  }
};

TEST_F(BundleTest, TextsComeFromTheNearestLanguage) {
  struct Row {
    const char* language;
    const char* key;
    const char* table;
    const char* text;
  };
  const Row rows[] = {
      {"pt-BR", "hello", "", "Oi"},       {"pt-PT", "hello", "", "Olá"},
      {"pt", "only", "", "English only"}, {"xx", "hello", "", "Hello"},
      {"", "hello", "", "Hello"},         {"en", "hello", "Other", "Other hello"},
      {"en", "absent", "", "absent"},     {"en", "hello", "NoSuchTable", "hello"},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(bundle(row.language).localizedString(row.key, "", row.table), row.text)
        << row.language << ' ' << row.key;
  }
  EXPECT_EQ(bundle("en").localizedString("absent", "given", ""), "given");
  EXPECT_TRUE(log.lines.empty());
}

TEST_F(BundleTest, ACorruptTableIsLoggedOnceAndStoodInFor) {
  for (const char* language : {"fr", "it", "ko"}) {
    log.lines.clear();
    const FileBundle corrupt = bundle(language);
    EXPECT_EQ(corrupt.localizedString("hello", "", ""), "Hello");
    EXPECT_EQ(corrupt.localizedString("absent", "", ""), "absent");
    EXPECT_EQ(log.lines.size(), 1U) << language;
  }
}

TEST_F(BundleTest, TheBuildTellsItsVersionAndName) {
  EXPECT_EQ(bundle("en").infoValue("CFBundleVersion"), "1.2.3");
  EXPECT_EQ(bundle("en").infoValue("CFBundleDisplayName"), "Endpin");
  EXPECT_FALSE(bundle("en").infoValue("CFBundleColour").has_value());
}

TEST(LanguageTag, FollowsTheNameOfTheLocale) {
  const struct {
    const char* locale;
    const char* tag;
  } rows[] = {{"de_AT.UTF-8", "de-AT"},
              {"ja", "ja"},
              {"C", "en"},
              {"C.UTF-8", "en"},
              {"", "en"},
              {"ca_ES.UTF-8@valencia", "ca-ES"},
              {"zh_CN", "zh-Hans"},
              {"zh_TW.Big5", "zh-Hant"}};
  for (const auto& row : rows) EXPECT_EQ(languageTag(row.locale), row.tag) << row.locale;
}

}  // namespace
}  // namespace endpin
