// The application's texts, which the page has loaded in the user's language. Thread: main.
#pragma once

#include "ports/Bundle.h"

namespace endpin {

class WebBundle : public Bundle {
 public:
  // Relative to the page.
  [[nodiscard]] std::string resourcePath() const override { return "resources"; }

  [[nodiscard]] std::string localizedString(std::string_view key, std::string_view value,
                                            std::string_view table) const override;

  // "CFBundleVersion", "CFBundleDisplayName" and "CFBundleName". The names are not translated.
  [[nodiscard]] std::optional<std::string> infoValue(std::string_view key) const override;
  [[nodiscard]] std::optional<std::string> localizedInfoValue(
      std::string_view /*key*/) const override {
    return std::nullopt;
  }
};

}  // namespace endpin
