// Where the settings are kept. Thread: any.
#pragma once

#include <filesystem>

namespace endpin {

// settings.db in the user's data folder: $XDG_DATA_HOME/endpin, or ~/.local/share/endpin when that
// is not set or not absolute.
[[nodiscard]] std::filesystem::path defaultStorePath();

// Makes the folder and those above it that are missing, for the user alone (mode 0700).
[[nodiscard]] std::error_code makePrivateFolder(const std::filesystem::path& folder);

}  // namespace endpin
