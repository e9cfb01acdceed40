#include "desktop/DefaultTexts.h"

#include <exception>
#include <fstream>
#include <nlohmann/json.hpp>

namespace endpin {
namespace {

// Null for what cannot be read, a folder of that name included.
nlohmann::json parsed(const std::string& path) {
  std::ifstream file(path);
  try {
    return nlohmann::json::parse(file);
  } catch (const std::exception&) {
    return {};
  }
}

}  // namespace

QVariantMap defaultTexts(const Bundle& bundle) {
  const auto english = parsed(bundle.resourcePath() + "/texts/Localizable/en.json");
  QVariantMap texts;
  if (!english.is_object()) return texts;
  for (const auto& entry : english.items()) {
    texts.insert(QString::fromStdString(entry.key()),
                 QString::fromStdString(bundle.localizedString(entry.key(), "", "")));
  }
  return texts;
}

}  // namespace endpin
