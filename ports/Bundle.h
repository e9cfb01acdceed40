// The application's own resources: files, texts in the user's language, facts about the build; and
// bundles inside them. Called by the application shell and the rating prompt. Thread: any.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace endpin {

class Bundle {
 public:
  virtual ~Bundle() = default;

  // Folder that holds the resource files, without a slash at the end.
  [[nodiscard]] virtual std::string resourcePath() const = 0;

  // The text of `key` in `table` (empty: the default table) in the user's language. A key without
  // a text gives `value`, and the key itself when `value` is empty: a missing text shows itself.
  [[nodiscard]] virtual std::string localizedString(std::string_view key, std::string_view value,
                                                    std::string_view table) const = 0;

  // A value of the build's information, such as "CFBundleVersion", or of its translation into the
  // user's language.
  [[nodiscard]] virtual std::optional<std::string> infoValue(std::string_view key) const = 0;
  [[nodiscard]] virtual std::optional<std::string> localizedInfoValue(
      std::string_view key) const = 0;
};

// Thread: main.
class ResourceBundles {
 public:
  virtual ~ResourceBundles() = default;

  // The resource NAME.EXTENSION of the application, opened as a bundle and owned by this port; null
  // when there is none.
  [[nodiscard]] virtual const Bundle* bundleForResource(std::string_view name,
                                                        std::string_view extension) = 0;
};

}  // namespace endpin
