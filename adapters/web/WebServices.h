// The small duties of a page: log, beep, session, device. Thread: main.
#pragma once

#include <memory>
#include <string>
#include <utility>

#include "adapters/offline/FixedDevice.h"
#include "adapters/web/Host.h"
#include "ports/AudioPlayer.h"
#include "ports/AudioSession.h"
#include "ports/Log.h"

namespace endpin {

class WebLog : public Log {
 public:
  void line(std::string_view text) override { host::log(text.data(), text.size()); }
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

// The browser grants what it grants when the page asks for the microphone, and tells no volume: it
// counts as full.
class WebSession : public AudioSession {
 public:
  Error setCategory(AudioSessionCategory /*category*/, std::uint32_t /*options*/) override {
    return std::nullopt;
  }
  Error setMode(AudioSessionMode /*mode*/) override { return std::nullopt; }
  Error setActive(bool /*active*/) override { return std::nullopt; }
  [[nodiscard]] float outputVolume() const override { return 1.0F; }
};

class WebDevice : public FixedDevice {
 public:
  using FixedDevice::FixedDevice;
  void setIdleTimerDisabled(bool disabled) override { host::keepAwake(disabled); }
};

}  // namespace endpin
