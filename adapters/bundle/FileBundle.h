// The application's resources as a folder of files: pictures, sounds, and the texts of each table
// and language as texts/TABLE/TAG.json, a flat object of strings. Thread: any.
#pragma once

#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "ports/Bundle.h"
#include "ports/Log.h"

namespace endpin {

class FileBundle : public Bundle {
 public:
  struct Place {
    std::string resourcePath;  // without a slash at the end
    std::string language;      // tag such as "pt-BR"; the texts of "pt", then "en", stand in
    std::string version;       // of the application
  };

  // `log` outlives the bundle. It receives one line for each table that cannot be read.
  FileBundle(Place place, Log& log);
  ~FileBundle() override;

  [[nodiscard]] std::string resourcePath() const override { return place_.resourcePath; }

  // Without a text in the user's language the same key is looked for in English.
  [[nodiscard]] std::string localizedString(std::string_view key, std::string_view value,
                                            std::string_view table) const override;

  // The keys of the default table in English, which has them all; none when it cannot be read.
  [[nodiscard]] std::vector<std::string> defaultKeys() const;

  // "CFBundleVersion", "CFBundleDisplayName" and "CFBundleName". The names are not translated.
  [[nodiscard]] std::optional<std::string> infoValue(std::string_view key) const override;
  [[nodiscard]] std::optional<std::string> localizedInfoValue(std::string_view key) const override;

 private:
  using Texts = std::map<std::string, std::string, std::less<>>;

  // The texts under TABLE/TAG; the mutex is held.
  const Texts& texts(std::string_view table, const std::string& language) const;
  [[nodiscard]] Texts load(const std::string& name) const;

  const Place place_;
  const std::vector<std::string> languages_;  // in the order in which they are asked
  Log& log_;
  mutable std::mutex mutex_;
  mutable std::map<std::string, Texts> loaded_;  // by TABLE/TAG, read when first asked for
};

// Where this program's resources are: the folder "resources" beside the executable, or else
// ../share/endpin from there.
[[nodiscard]] std::string applicationResourcePath();

// The language that the environment asks for (LC_ALL, LC_MESSAGES, LANG) as a tag: "de_AT.UTF-8"
// gives "de-AT", none gives "en", Chinese gives its script.
[[nodiscard]] std::string environmentLanguage();

// The same for one value of such a variable.
[[nodiscard]] std::string languageTag(std::string_view localeName);

}  // namespace endpin
