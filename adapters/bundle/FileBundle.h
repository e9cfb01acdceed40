// The application's resources as a folder of files: pictures, sounds, and the texts of each table
// and language as texts/TABLE/TAG.json, a flat object of strings. Thread: any.
#pragma once

#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "ports/Bundle.h"
#include "ports/Log.h"

namespace endpin {

class FileBundle : public Bundle {
 public:
  struct Place {
    std::string resourcePath;  // without a slash at the end
    std::string language;      // tag such as "pt-BR"
    std::string version;       // of the application
  };

  // `log` outlives the bundle. It receives one line for each table that cannot be read.
  FileBundle(Place place, Log& log);
  ~FileBundle() override;

  [[nodiscard]] std::string resourcePath() const override { return place_.resourcePath; }

  // A table stands in one language only: the user's, or where there is none that can be read the
  // nearest (see readableTags), or English. A text that it lacks is asked of no other.
  [[nodiscard]] std::string localizedString(std::string_view key, std::string_view value,
                                            std::string_view table) const override;

  // The keys of the default table; none when it cannot be read.
  [[nodiscard]] std::vector<std::string> defaultKeys() const;
  // The language of its texts, a tag such as "zh-Hans".
  [[nodiscard]] std::string language() const;

  // "CFBundleVersion", "CFBundleDisplayName" and "CFBundleName". The names are not translated.
  [[nodiscard]] std::optional<std::string> infoValue(std::string_view key) const override;
  [[nodiscard]] std::optional<std::string> localizedInfoValue(std::string_view key) const override;

 private:
  using Texts = std::map<std::string, std::string, std::less<>>;

  struct Table {
    std::string language;
    Texts texts;
  };

  // The table of that name in the nearest language; the mutex is held.
  const Table& tableInUse(std::string_view name) const;
  [[nodiscard]] std::optional<Texts> load(const std::string& name) const;

  const Place place_;
  const std::vector<std::string> languages_;  // in the order in which they are asked
  Log& log_;
  mutable std::mutex mutex_;
  mutable std::map<std::string, Table, std::less<>> loaded_;  // read when first asked for
};

// Where this program's resources are: the folder "resources" beside the executable, or else
// ../share/endpin from there.
[[nodiscard]] std::string applicationResourcePath();

// The name of a locale, or a tag however it is written, as the tag we go by: "de_AT.UTF-8" gives
// "de-AT", "C" and nothing give "en", Chinese gives its script: "zh-Hans" or "zh-Hant".
[[nodiscard]] std::string languageTag(std::string_view localeName);

// That tag and what those who speak it can read as well, the best first: the language of a region,
// the other Chinese script.
[[nodiscard]] std::vector<std::string> readableTags(const std::string& tag);

// Whether there are texts in one of these under `resourcePath`.
[[nodiscard]] bool hasTexts(const std::string& resourcePath, const std::string& tag);

// The first language with such texts that the environment asks for, as a tag, or English. It asks
// as it asks other programs: with LC_ALL, else LC_MESSAGES, else LANG; and if these name a language
// at all, LANGUAGE can give a list in their place.
[[nodiscard]] std::string environmentLanguage(const std::string& resourcePath);

}  // namespace endpin
