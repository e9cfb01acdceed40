// Any arguments for the terminal's program: a command, or one line and exit code 2.
//
// An input is the arguments, with a zero byte between two of them.
#include "adapters/cli11/ProgramError.h"
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
}
void check(const ToneOptions& options) {
  require(options.a4 >= 1 && options.a4 <= 9999, "A4 is a pitch");
  require(options.string < 4 && !options.output.empty(), "a tone is of a string, into a file");
  require(options.frames >= 1 && options.frames <= 3600U * 44100U, "a tone has a length");
}
void check(const PrintText& text) {
  require(!text.text.empty() && text.text.back() == '\n', "what is printed is whole lines");
}

}  // namespace
}  // namespace endpin::fuzzing

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace endpin;
  using namespace endpin::fuzzing;
  const Arguments arguments("endpin-cli", data, size);
  try {
    std::visit([](const auto& command) { check(command); },
               parseCommandLine(arguments.count(), arguments.values()));
  } catch (const ProgramError& error) {
    require(error.exitCode() == kExitUsage, "wrong arguments are wrong usage");
    require(isOneLine(error.what()), "a complaint is one line");
  }
  return 0;
}
