// Any bytes as the text table of a language, and any language: every text is there, its own or its
// stand-in, and a table that cannot be read is one line in the log.
//
// An input is the name of a locale (a text) and the table.
#include <filesystem>
#include <fstream>

#include "adapters/bundle/FileBundle.h"
#include "app/Localisation.h"
#include "calibration/TemperamentName.h"
#include "fuzz/Fuzzing.h"
#include "rating/RatingAlert.h"
#include "tests/fakes/FakePlatform.h"
#include "tests/support/TempDirectory.h"

namespace endpin::fuzzing {
namespace {

namespace fs = std::filesystem;

constexpr std::array<const char*, 2> kTables = {"Localizable", AlertTexts::kTable};

void writeTables(const fs::path& folder, const std::string& table) {
  for (const char* name : kTables) {
    fs::create_directories(folder / "texts" / name);
    std::ofstream(folder / "texts" / name / "xx.json", std::ios::binary) << table;
    std::ofstream(folder / "texts" / name / "en.json") << R"({"hello": "Hello"})";
  }
}

void readTexts(const Bundle& bundle) {
  for (const char* table : kTables) {
    require(bundle.localizedString("absent", "given", table) != "absent", "the given text is used");
    static_cast<void>(bundle.localizedString("hello", "", table));
  }
  AppOutlets outlets;
  localizeSettings(bundle, outlets);
  displayAboutText(bundle, outlets);
  Label name;
  for (int index = 0; index <= 15; ++index) displayTemperamentName(index, bundle, name);
  const AlertTexts alert;
  for (std::size_t text = 0; text < AlertTexts::kCount; ++text) {
    static_cast<void>(alert.text(static_cast<AlertTexts::Name>(text), bundle, bundle));
  }
}

}  // namespace
}  // namespace endpin::fuzzing

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace endpin;
  using namespace endpin::fuzzing;
  static const endpin::testing::TempDirectory folder;
  Input input(data, size);
  const std::string locale = input.text();
  writeTables(folder.path(), Input::textOf(input.rest()));

  fakes::FakeLog log;
  const FileBundle bundle({folder.path().string(), "xx", "1.0"}, log);
  readTexts(bundle);
  require(log.lines.size() <= kTables.size(), "one line a table");
  for (const std::string& line : log.lines) require(isOneLine(line), "a complaint is one line");

  const FileBundle elsewhere({folder.path().string(), languageTag(locale), "1.0"}, log);
  readTexts(elsewhere);
  return 0;
}
