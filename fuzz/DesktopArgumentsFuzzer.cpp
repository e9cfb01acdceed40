// Any arguments for the program with the screen: options, or one line and exit code 2.
//
// An input is the arguments, with a zero byte between two of them.
#include <filesystem>

#include "adapters/bundle/FileBundle.h"
#include "adapters/cli11/ProgramError.h"
#include "desktop/Language.h"
#include "desktop/Options.h"
#include "fuzz/Arguments.h"

namespace endpin::fuzzing {
namespace {

void check(const PrintText& text) {
  require(!text.text.empty() && text.text.back() == '\n', "what is printed is whole lines");
}
void check(const Options& options) {
  require(options.after >= 0 && options.after <= 86400, "a screenshot comes within a day");
  require(!options.store.empty(), "the settings have a place");
  require(options.input.empty() || options.inputDevice.empty(), "there is one microphone");
  require(!chooseLanguage(options.language, applicationResourcePath()).empty(),
          "there is a language");
}

}  // namespace
}  // namespace endpin::fuzzing

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace endpin;
  using namespace endpin::fuzzing;
  const Arguments arguments("endpin", data, size);
  try {
    std::visit([](const auto& asked) { check(asked); },
               parseOptions(arguments.count(), arguments.values()));
  } catch (const ProgramError& error) {
    require(error.exitCode() == kExitUsage, "wrong arguments are wrong usage");
    require(isOneLine(error.what()), "a complaint is one line", error.what());
  }
  return 0;
}
