#include "adapters/sqlite/StorePath.h"

#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <system_error>

namespace endpin {
namespace {

namespace fs = std::filesystem;

fs::path homeFolder() {
  const char* home = std::getenv("HOME");
  if (home && *home) return home;
  const passwd* user = getpwuid(getuid());
  return user ? user->pw_dir : "/";
}

fs::path dataFolder() {
  const char* folder = std::getenv("XDG_DATA_HOME");
  if (folder && fs::path(folder).is_absolute()) return folder;
  return homeFolder() / ".local" / "share";
}

}  // namespace

fs::path defaultStorePath() {
  return dataFolder() / "endpin" / "settings.db";
}

std::error_code makePrivateFolder(const fs::path& folder) {
  std::error_code failed;
  if (folder.empty() || fs::is_directory(folder, failed)) return {};
  if (const auto above = makePrivateFolder(folder.parent_path())) return above;
  if (mkdir(folder.c_str(), S_IRWXU) == 0 || errno == EEXIST) return {};
  return {errno, std::generic_category()};
}

}  // namespace endpin
