// Players that make no sound and count how often they were asked to. Any path gives one, whether
// there is a file or not. Thread: main.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "ports/AudioPlayer.h"

namespace endpin {

class CountingPlayers : public AudioPlayers {
 public:
  // The player outlives this no more than its last play.
  std::unique_ptr<AudioPlayer> playerWithContentsOf(const std::string& /*path*/) override {
    return std::make_unique<Player>(plays_);
  }

  // Plays of all players together.
  [[nodiscard]] std::uint64_t plays() const { return plays_; }

 private:
  class Player : public AudioPlayer {
   public:
    explicit Player(std::uint64_t& plays) : plays_(plays) {}
    void play() override { ++plays_; }

   private:
    std::uint64_t& plays_;
  };

  std::uint64_t plays_ = 0;
};

}  // namespace endpin
