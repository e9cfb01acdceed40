#include "desktop/DefaultTexts.h"

#include <fstream>
#include <nlohmann/json.hpp>

namespace endpin {

QVariantMap defaultTexts(const Bundle& bundle) {
  std::ifstream file(bundle.resourcePath() + "/texts/Localizable/en.json");
  const auto english = nlohmann::json::parse(file, nullptr, false);
  QVariantMap texts;
  if (!english.is_object()) return texts;
  for (const auto& entry : english.items()) {
    texts.insert(QString::fromStdString(entry.key()),
                 QString::fromStdString(bundle.localizedString(entry.key(), "", "")));
  }
  return texts;
}

}  // namespace endpin
