#include "adapters/cli11/ParseArguments.h"

#include <CLI/CLI.hpp>
#include <algorithm>

namespace endpin {

std::optional<PrintText> parseArguments(CLI::App& app, int argc, const char* const* argv) {
  try {
    app.parse(argc, argv);
  } catch (const CLI::CallForHelp&) {
    return PrintText{app.help()};
  } catch (const CLI::CallForVersion& version) {
    return PrintText{std::string(version.what()) + '\n'};
  } catch (const CLI::ParseError& error) {
    rejectArguments(std::string(error.what()) + " (--help explains)");
  }
  return std::nullopt;
}

void rejectArguments(const std::string& message) {
  throw ProgramError(kExitUsage, message);
}

void rejectEmptyTexts(const CLI::App& app) {
  for (const CLI::Option* option : app.get_options()) {
    const auto& given = option->results();
    if (std::find(given.begin(), given.end(), "") != given.end()) {
      rejectArguments(option->get_name() + " needs a value");
    }
  }
}

}  // namespace endpin
