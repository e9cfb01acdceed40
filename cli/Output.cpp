#include "cli/Output.h"

#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <string>

#include "adapters/cli11/ProgramError.h"

namespace endpin {
namespace {

[[noreturn]] void fail() {
  throw ProgramError(kExitFailure,
                     std::string("output cannot be written: ") + std::strerror(errno));
}

}  // namespace

void Output::write(std::string_view text) {
  if (std::fwrite(text.data(), 1, text.size(), stream_) != text.size()) fail();
}

void Output::flush() {
  if (std::fflush(stream_) != 0) fail();
}

bool Output::isTerminal() const {
  return isatty(fileno(stream_)) != 0;
}

}  // namespace endpin
