#include "adapters/web/WebStore.h"

#include <fmt/format.h>

#include <utility>

#include "adapters/web/Exchange.h"
#include "adapters/web/Host.h"

namespace endpin {
namespace {

// A value is stored as the letter of its type and its text.
struct Encode {
  std::string operator()(bool flag) const { return flag ? "b1" : "b0"; }
  std::string operator()(std::int64_t number) const { return fmt::format("i{}", number); }
  std::string operator()(double number) const { return fmt::format("d{}", number); }
  std::string operator()(const std::string& text) const { return 's' + text; }
};

// What no version of ours has stored is no value.
std::optional<SettingValue> decoded(const std::string& stored) {
  const std::string text = stored.empty() ? "" : stored.substr(1);
  switch (stored.empty() ? '\0' : stored.front()) {
    case 'b':
      return text == "1";
    case 'i':
      return leadingNumber<std::int64_t>(text);
    case 'd':
      return leadingNumber<double>(text);
    case 's':
      return text;
    default:
      return std::nullopt;
  }
}

}  // namespace

void WebStore::removeAll() {
  written_.clear();
  cleared_ = true;
  host::settingsClear();
}

std::optional<SettingValue> WebStore::find(std::string_view key) const {
  if (const auto found = written_.find(key); found != written_.end()) return found->second;
  if (cleared_) return std::nullopt;
  const auto stored = exchangedText(host::settingRead(key.data(), key.size()));
  return stored ? decoded(*stored) : std::nullopt;
}

void WebStore::set(std::string_view key, SettingValue value) {
  const std::string text = std::visit(Encode{}, value);
  written_.insert_or_assign(std::string(key), std::move(value));
  if (host::settingWrite(key.data(), key.size(), text.data(), text.size())) return;
  if (!std::exchange(refused_, true)) log_.line("The browser does not keep the settings.");
}

}  // namespace endpin
