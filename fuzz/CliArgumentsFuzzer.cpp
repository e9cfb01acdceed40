// Any arguments for the terminal's program: a command, or one line and exit code 2.
//
// An input is the arguments, with a zero byte between two of them.
#include "cli/CommandLine.h"
#include "fuzz/Arguments.h"

namespace endpin::fuzzing {
namespace {

void check(const FrequenciesOptions& options) {
  require(options.a4 >= 1 && options.a4 <= 9999, "A4 is a pitch");
}
void check(const ListenOptions& options) {
  require(options.a4.value_or(440) >= 1 && options.a4.value_or(440) <= 9999, "A4 is a pitch");
  require(!options.realtime || !options.input.empty(), "real time is for a file");
  require(options.input.empty() || options.inputDevice.empty(), "there is one microphone");
  require(!options.a4 || options.store.empty(), "a given A4 leaves the settings alone");
}
void check(const ToneOptions& options) {
  require(options.a4 >= 1 && options.a4 <= 9999, "A4 is a pitch");
  require(options.string < 4, "a tone is of a string");
  require(options.frames >= 1 || options.output.empty(), "a file has a length");
  require(options.frames <= 3600U * 44100U, "a length has an end");
}

}  // namespace
}  // namespace endpin::fuzzing

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace endpin;
  using namespace endpin::fuzzing;
  parseOrReject(Arguments("endpin-cli", data, size), [](int count, const char* const* values) {
    std::visit([](const auto& asked) { check(asked); }, parseCommandLine(count, values));
  });
  return 0;
}
