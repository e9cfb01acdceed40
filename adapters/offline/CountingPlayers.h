// Players that count how often they were asked to play, and pass it on to the players behind them,
// if there are any. Any path gives one, whether there is a file or not. Thread: main.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <utility>

#include "ports/AudioPlayer.h"

namespace endpin {

class CountingPlayers : public AudioPlayers {
 public:
  // `audible`, if there are any, outlive this. Without them nothing is heard.
  explicit CountingPlayers(AudioPlayers* audible = nullptr) : audible_(audible) {}

  // The players must not be used after this has gone.
  std::unique_ptr<AudioPlayer> playerWithContentsOf(const std::string& path) override {
    return std::make_unique<Player>(plays_,
                                    audible_ ? audible_->playerWithContentsOf(path) : nullptr);
  }

  // Plays of all players together.
  [[nodiscard]] std::uint64_t plays() const { return plays_; }

 private:
  class Player : public AudioPlayer {
   public:
    Player(std::uint64_t& plays, std::unique_ptr<AudioPlayer> audible)
        : plays_(plays), audible_(std::move(audible)) {}
    void play() override {
      ++plays_;
      if (audible_) audible_->play();
    }

   private:
    std::uint64_t& plays_;
    const std::unique_ptr<AudioPlayer> audible_;
  };

  AudioPlayers* const audible_;
  std::uint64_t plays_ = 0;
};

}  // namespace endpin
