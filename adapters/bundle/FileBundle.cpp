#include "adapters/bundle/FileBundle.h"

#include <algorithm>
#include <exception>
#include <fstream>
#include <nlohmann/json.hpp>
#include <utility>

namespace endpin {
namespace {

constexpr std::string_view kDefaultTable = "Localizable";
constexpr std::string_view kDefaultLanguage = "en";

// The tag, the tag without region, English; each once.
std::vector<std::string> languagesFor(const std::string& tag) {
  std::vector<std::string> languages;
  for (const std::string& each :
       {tag, tag.substr(0, tag.find('-')), std::string(kDefaultLanguage)}) {
    if (!each.empty() && std::find(languages.begin(), languages.end(), each) == languages.end()) {
      languages.push_back(each);
    }
  }
  return languages;
}

}  // namespace

FileBundle::FileBundle(Place place, Log& log)
    : place_(std::move(place)), languages_(languagesFor(place_.language)), log_(log) {}

FileBundle::~FileBundle() = default;

std::string FileBundle::localizedString(std::string_view key, std::string_view value,
                                        std::string_view table) const {
  const std::lock_guard lock(mutex_);
  for (const std::string& language : languages_) {
    const Texts& inLanguage = texts(table.empty() ? kDefaultTable : table, language);
    if (const auto found = inLanguage.find(key); found != inLanguage.end()) return found->second;
  }
  return std::string(value.empty() ? key : value);
}

std::vector<std::string> FileBundle::defaultKeys() const {
  const std::lock_guard lock(mutex_);
  std::vector<std::string> keys;
  for (const auto& [key, text] : texts(kDefaultTable, std::string(kDefaultLanguage))) {
    keys.push_back(key);
  }
  return keys;
}

const FileBundle::Texts& FileBundle::texts(std::string_view table,
                                           const std::string& language) const {
  const std::string name = std::string(table) + '/' + language;
  const auto found = loaded_.find(name);
  if (found != loaded_.end()) return found->second;
  return loaded_.emplace(name, load(name)).first->second;
}

// A missing file is an empty table: not every language has every text. What can be opened and not
// read, such as a folder, makes the stream throw, not the parser.
FileBundle::Texts FileBundle::load(const std::string& name) const {
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
