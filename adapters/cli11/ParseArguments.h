// The arguments of a program, read by CLI11 and reported in our own way. Thread: main.
#pragma once

#include <CLI/CLI.hpp>
#include <optional>
#include <string>

#include "adapters/cli11/ProgramError.h"

namespace endpin {

// Fills what `app` was told to fill; text when help or the version was asked for. Throws
// ProgramError with kExitUsage.
[[nodiscard]] std::optional<PrintText> parseArguments(CLI::App& app, int argc,
                                                      const char* const* argv);

// Throws ProgramError with kExitUsage.
[[noreturn]] void rejectArguments(const std::string& message);

// Rejects options that were given an empty text, `app` being what has the options.
void rejectEmptyTexts(const CLI::App& app);

}  // namespace endpin
