// Any arguments for the program with the screen: options, or one line and exit code 2.
//
// An input is the arguments, with a zero byte between two of them.
#include <filesystem>

#include "adapters/bundle/FileBundle.h"
#include "desktop/Language.h"
#include "desktop/Options.h"
#include "fuzz/Arguments.h"

namespace endpin::fuzzing {
namespace {

void check(const Options& options) {
  require(options.after >= 0 && options.after <= 86400, "a screenshot comes within a day");
  require(!options.store.empty() || !options.screenshot.empty(), "the settings have a place");
  require(options.input.empty() || options.inputDevice.empty(), "there is one microphone");
  require(!chooseLanguage(options.language, applicationResourcePath()).empty(),
          "there is a language");
}

}  // namespace
}  // namespace endpin::fuzzing

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace endpin;
  using namespace endpin::fuzzing;
  parseOrReject(Arguments("endpin", data, size), [](int count, const char* const* values) {
    std::visit([](const auto& asked) { check(asked); }, parseOptions(count, values));
  });
  return 0;
}
