#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <filesystem>

#include "adapters/bundle/FileBundle.h"

namespace endpin {
namespace {

namespace fs = std::filesystem;

std::vector<std::string> split(std::string_view text, std::string_view separators) {
  std::vector<std::string> parts;
  while (!text.empty()) {
    const auto end = text.find_first_of(separators);
    if (end != 0) parts.emplace_back(text.substr(0, end));
    text.remove_prefix(end == text.npos ? text.size() : end + 1);
  }
  return parts;
}

bool saysNoLanguage(std::string_view localeName) {
  const std::string_view name = localeName.substr(0, localeName.find_first_of(".@"));
  return name.empty() || name == "C" || name == "POSIX";
}

std::string mapped(std::string text, int (*change)(int)) {
  for (char& letter : text) letter = static_cast<char>(change(static_cast<unsigned char>(letter)));
  return text;
}

// Chinese is written in one of two scripts: the one that is named, or else that of the region.
std::string chinese(const std::vector<std::string>& rest) {
  const auto has = [&](const char* part) { return std::ranges::count(rest, part) > 0; };
  const bool traditional = !has("HANS") && (has("HANT") || has("TW") || has("HK") || has("MO"));
  return traditional ? "zh-Hant" : "zh-Hans";
}

// A variable of the environment; one that is not set is empty.
std::string_view variable(const char* name) {
  const char* value = std::getenv(name);
  return value ? value : "";
}

std::string_view environmentLocale() {
  for (const char* name : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
    if (const auto value = variable(name); !value.empty()) return value;
  }
  return "";
}

}  // namespace

std::string applicationResourcePath() {
  std::error_code failed;
  const auto folder = fs::read_symlink("/proc/self/exe", failed).parent_path();
  const auto beside = folder / "resources";
  if (fs::is_directory(beside, failed)) return beside.string();
  return (folder.parent_path() / "share" / "endpin").string();
}

std::string languageTag(std::string_view localeName) {
  if (saysNoLanguage(localeName)) return "en";
  auto parts = split(localeName.substr(0, localeName.find_first_of(".@")), "_-");
  if (parts.empty()) return "en";
  std::string tag = mapped(parts.front(), std::tolower);
  parts.erase(parts.begin());
  for (std::string& part : parts) part = mapped(part, std::toupper);
  if (tag == "zh") return chinese(parts);
  for (const std::string& part : parts) tag += '-' + part;
  return tag;
}

std::vector<std::string> readableTags(const std::string& tag) {
  if (tag == "zh-Hant") return {tag, "zh-Hans"};
  const std::string language = tag.substr(0, tag.find('-'));
  if (language == tag) return {tag};
  return {tag, language};
}

bool hasTexts(const std::string& resourcePath, const std::string& tag) {
  return std::ranges::any_of(readableTags(tag), [&](const std::string& each) {
    std::error_code missing;
    return fs::exists(resourcePath + "/texts/Localizable/" + each + ".json", missing);
  });
}

std::string environmentLanguage(const std::string& resourcePath) {
  const std::string_view locale = environmentLocale();
  if (saysNoLanguage(locale)) return "en";
  const std::string_view list = variable("LANGUAGE");
  for (const std::string& wanted : split(list.empty() ? locale : list, ":")) {
    std::string tag = languageTag(wanted);
    if (hasTexts(resourcePath, tag)) return tag;
  }
  return "en";
}

}  // namespace endpin
