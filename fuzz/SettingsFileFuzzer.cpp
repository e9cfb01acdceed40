// Any bytes as the settings file of an earlier run: the application starts on it, writes, and finds
// what it has written when it comes back, unless it has said that it cannot.
#include <filesystem>
#include <fstream>

#include "adapters/sqlite/SqliteStore.h"
#include "app/Application.h"
#include "fuzz/Fuzzing.h"
#include "tests/fakes/FakePlatform.h"
#include "tests/support/TempDirectory.h"

namespace endpin::fuzzing {
namespace {

namespace fs = std::filesystem;

bool says(const fakes::FakeLog& log, const char* part) {
  return std::any_of(log.lines.begin(), log.lines.end(),
                     [part](const std::string& line) { return line.find(part) != line.npos; });
}

bool isKeptAside(const fs::path& folder) {
  return std::any_of(fs::directory_iterator(folder), {}, [](const auto& file) {
    return file.path().filename().string().find(".corrupt-") != std::string::npos;
  });
}

void startAndWrite(const std::string& path, fakes::FakeLog& log) {
  SqliteStore store(path, log);
  fakes::FakePlatform fake;
  Platform platform{fake.input, fake.session, fake.players, fake.output, fake.runLoop,
                    store,      fake.device,  fake.bundle,  fake.log};
  Application(platform).launch();
  store.setDouble("savedSliderValue", 0.1);
  store.setString("text", "Hände");
}

}  // namespace
}  // namespace endpin::fuzzing

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace endpin::fuzzing;
  static const endpin::testing::TempDirectory parent;
  const fs::path folder = parent.path() / "settings";
  fs::remove_all(folder);
  fs::create_directory(folder);
  const std::string path = folder / "settings.db";
  std::ofstream(path, std::ios::binary) << std::string(data, data + size);

  endpin::fakes::FakeLog log;
  startAndWrite(path, log);
  for (const std::string& line : log.lines) require(isOneLine(line), "a complaint is one line");
  require(log.lines.size() <= 2, "one line a trouble");
  require(says(log, "are damaged") == isKeptAside(folder), "a damaged file is kept aside");
  if (says(log, "cannot be")) return 0;
  endpin::fakes::FakeLog again;
  const endpin::SqliteStore store(path, again);
  require(store.doubleForKey("savedSliderValue") == 0.1, "a written number is read back");
  require(store.stringForKey("text") == "Hände", "a written text is read back");
  require(again.lines.empty(), "what was mended stays mended",
          again.lines.empty() ? "" : again.lines[0]);
  return 0;
}
