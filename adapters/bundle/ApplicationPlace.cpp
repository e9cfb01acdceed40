#include <cstdlib>
#include <filesystem>

#include "adapters/bundle/FileBundle.h"

namespace endpin {
namespace {

// Chinese is written in one of two scripts, which its region tells.
std::string chinese(std::string_view region) {
  const bool traditional = region == "TW" || region == "HK" || region == "MO";
  return traditional ? "zh-Hant" : "zh-Hans";
}

}  // namespace

std::string applicationResourcePath() {
  std::error_code failed;
  const auto folder = std::filesystem::read_symlink("/proc/self/exe", failed).parent_path();
  const auto beside = folder / "resources";
  if (std::filesystem::is_directory(beside, failed)) return beside.string();
  return (folder.parent_path() / "share" / "endpin").string();
}

std::string languageTag(std::string_view localeName) {
  const std::string_view name = localeName.substr(0, localeName.find_first_of(".@"));
  if (name.empty() || name == "C" || name == "POSIX") return "en";
  const auto underscore = name.find('_');
  const std::string language(name.substr(0, underscore));
  const std::string_view region = underscore == name.npos ? "" : name.substr(underscore + 1);
  if (language == "zh") return chinese(region);
  return region.empty() ? language : language + '-' + std::string(region);
}

std::string environmentLanguage() {
  for (const char* variable : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
    const char* value = std::getenv(variable);
    if (value && *value) return languageTag(value);
  }
  return languageTag("");
}

}  // namespace endpin
