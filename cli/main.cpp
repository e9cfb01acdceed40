// endpin-cli: the tuner in the terminal.
#include <csignal>
#include <cstdio>
#include <exception>
#include <string>
#include <variant>

#include "adapters/cli11/ProgramError.h"
#include "cli/CommandLine.h"
#include "cli/Printing.h"

namespace {

using namespace endpin;

struct Run {
  Output& output;

  int operator()(const ListenOptions& options) const { return runListen(options, output); }
  int operator()(const FrequenciesOptions& options) const {
    return runFrequencies(options, output);
  }
  int operator()(const ToneOptions& options) const { return runTone(options); }
  int operator()(const PrintText& help) const {
    output.write(help.text);
    output.flush();
    return 0;
  }
};

int report(const std::string& message, int exitCode) {
  std::fprintf(stderr, "endpin-cli: %s\n", printable(message).c_str());
  return exitCode;
}

}  // namespace

int main(int argc, char** argv) {
  std::signal(SIGPIPE, SIG_IGN);  // a closed pipe is reported where it is written to
  Output output(stdout);
  try {
    return std::visit(Run{output}, parseCommandLine(argc, argv));
  } catch (const ProgramError& error) {
    return report(error.what(), error.exitCode());
  } catch (const std::exception& error) {
    return report(error.what(), kExitFailure);
  }
}
