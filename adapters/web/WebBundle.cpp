#include "adapters/web/WebBundle.h"

#include "adapters/web/Exchange.h"
#include "adapters/web/Host.h"

namespace endpin {

std::string WebBundle::localizedString(std::string_view key, std::string_view value,
                                       std::string_view table) const {
  const auto length = host::text(key.data(), key.size(), table.data(), table.size());
  return exchangedText(length).value_or(std::string(value.empty() ? key : value));
}

std::optional<std::string> WebBundle::infoValue(std::string_view key) const {
  if (key == "CFBundleVersion") return ENDPIN_VERSION;
  if (key == "CFBundleDisplayName" || key == "CFBundleName") return "Endpin";
  return std::nullopt;
}

}  // namespace endpin
