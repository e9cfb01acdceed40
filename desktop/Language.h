// Which language the application speaks. Thread: main.
#pragma once

#include <string>

namespace endpin {

// The tag to use: the wanted one, or the system's when none is wanted. A wanted language of which
// there are no texts under `resourcePath` throws ProgramError; a region that we do not know is
// fine.
[[nodiscard]] std::string chooseLanguage(const std::string& wanted,
                                         const std::string& resourcePath);

}  // namespace endpin
