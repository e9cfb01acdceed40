#include "desktop/Language.h"

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <vector>

#include "adapters/bundle/FileBundle.h"
#include "adapters/cli11/ProgramError.h"

namespace endpin {
namespace {

namespace fs = std::filesystem;

std::vector<std::string> languagesIn(const std::string& resourcePath) {
  std::vector<std::string> tags;
  std::error_code missing;
  for (const auto& file : fs::directory_iterator(resourcePath + "/texts/Localizable", missing)) {
    if (file.path().extension() == ".json") tags.push_back(file.path().stem());
  }
  std::sort(tags.begin(), tags.end());
  return tags;
}

}  // namespace

std::string chooseLanguage(const std::string& wanted, const std::string& resourcePath) {
  if (wanted.empty()) return environmentLanguage(resourcePath);
  const std::string tag = languageTag(wanted);
  if (hasTexts(resourcePath, tag) && wanted != "C" && wanted != "POSIX") return tag;
  throw ProgramError(kExitUsage,
                     fmt::format("there are no texts in the language \"{}\", only in {}", wanted,
                                 fmt::join(languagesIn(resourcePath), ", ")));
}

}  // namespace endpin
