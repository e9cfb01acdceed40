// The small duties of a page: log, texts, beep, device. Thread: main.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "adapters/offline/FixedDevice.h"
#include "adapters/web/Exchange.h"
#include "adapters/web/Host.h"
#include "ports/AudioPlayer.h"
#include "ports/Bundle.h"
#include "ports/Log.h"

namespace endpin {

class WebLog : public Log {
 public:
  void line(std::string_view text) override { host::log(text.data(), text.size()); }
};

// The texts, which the page has loaded in the user's language.
class WebBundle : public Bundle {
 public:
  // Relative to the page.
  [[nodiscard]] std::string resourcePath() const override { return "resources"; }

  [[nodiscard]] std::string localizedString(std::string_view key, std::string_view value,
                                            std::string_view table) const override {
    const auto length = host::text(key.data(), key.size(), table.data(), table.size());
    return exchangedText(length).value_or(std::string(value.empty() ? key : value));
  }

  // "CFBundleVersion", "CFBundleDisplayName" and "CFBundleName". The names are not translated.
  [[nodiscard]] std::optional<std::string> infoValue(std::string_view key) const override {
    if (key == "CFBundleVersion") return ENDPIN_VERSION;
    if (key == "CFBundleDisplayName" || key == "CFBundleName") return "Endpin";
    return std::nullopt;
  }
  [[nodiscard]] std::optional<std::string> localizedInfoValue(
      std::string_view /*key*/) const override {
    return std::nullopt;
  }
};

// The page has the sounds: every path gives a player.
class WebPlayers : public AudioPlayers {
 public:
  std::unique_ptr<AudioPlayer> playerWithContentsOf(const std::string& path) override {
    return std::make_unique<Player>(path);
  }

 private:
  class Player : public AudioPlayer {
   public:
    explicit Player(std::string path) : path_(std::move(path)) {}
    void play() override { host::playSound(path_.data(), path_.size()); }

   private:
    const std::string path_;
  };
};

class WebDevice : public FixedDevice {
 public:
  using FixedDevice::FixedDevice;
  void setIdleTimerDisabled(bool disabled) override { host::keepAwake(disabled); }
};

}  // namespace endpin
