#include "adapters/bundle/FileBundle.h"

#include <exception>
#include <fstream>
#include <nlohmann/json.hpp>
#include <utility>

namespace endpin {
namespace {

constexpr std::string_view kDefaultTable = "Localizable";
constexpr std::string_view kDefaultLanguage = "en";

// What stands in for a language without a table: what its readers can read, then English.
std::vector<std::string> languagesFor(const std::string& tag) {
  std::vector<std::string> languages = readableTags(tag);
  if (languages.back() != kDefaultLanguage) languages.emplace_back(kDefaultLanguage);
  return languages;
}

}  // namespace

FileBundle::FileBundle(Place place, Log& log)
    : place_(std::move(place)), languages_(languagesFor(place_.language)), log_(log) {}

FileBundle::~FileBundle() = default;

std::string FileBundle::localizedString(std::string_view key, std::string_view value,
                                        std::string_view table) const {
  const std::lock_guard lock(mutex_);
  const Texts& inUse = tableInUse(table.empty() ? kDefaultTable : table).texts;
  if (const auto found = inUse.find(key); found != inUse.end()) return found->second;
  return std::string(value.empty() ? key : value);
}

std::vector<std::string> FileBundle::defaultKeys() const {
  const std::lock_guard lock(mutex_);
  std::vector<std::string> keys;
  for (const auto& [key, text] : tableInUse(kDefaultTable).texts) keys.push_back(key);
  return keys;
}

std::string FileBundle::language() const {
  const std::lock_guard lock(mutex_);
  return tableInUse(kDefaultTable).language;
}

const FileBundle::Table& FileBundle::tableInUse(std::string_view name) const {
  const auto found = loaded_.find(name);
  if (found != loaded_.end()) return found->second;
  Table table{std::string(kDefaultLanguage), {}};
  for (const std::string& language : languages_) {
    if (auto texts = load(std::string(name) + '/' + language)) {
      table = {language, std::move(*texts)};
      break;
    }
  }
  return loaded_.emplace(name, std::move(table)).first->second;
}

// Nothing where there is no file. What can be opened and not read, such as a folder, makes the
// stream throw, not the parser.
std::optional<FileBundle::Texts> FileBundle::load(const std::string& name) const {
  const std::string path = place_.resourcePath + "/texts/" + name + ".json";
  std::ifstream file(path);
  if (!file) return {};
  try {
    return nlohmann::json::parse(file).get<Texts>();
  } catch (const std::exception& error) {
    log_.line(path + " cannot be read: " + error.what());
    return {};
  }
}

std::optional<std::string> FileBundle::infoValue(std::string_view key) const {
  if (key == "CFBundleVersion") return place_.version;
  if (key == "CFBundleDisplayName" || key == "CFBundleName") return "Endpin";
  return std::nullopt;
}

std::optional<std::string> FileBundle::localizedInfoValue(std::string_view /*key*/) const {
  return std::nullopt;
}

}  // namespace endpin
