// Plays a short sound file from memory. Called by the tuned-string feedback. Thread: main.
#pragma once

#include <memory>
#include <string>

namespace endpin {

class AudioPlayer {
 public:
  virtual ~AudioPlayer() = default;

  // Starts the sound at full volume, once, and returns at once. Playing while it still sounds
  // changes nothing.
  virtual void play() = 0;
};

class AudioPlayers {
 public:
  virtual ~AudioPlayers() = default;

  // Reads the whole file. Null, without a message, when it is missing or no sound.
  virtual std::unique_ptr<AudioPlayer> playerWithContentsOf(const std::string& path) = 0;
};

}  // namespace endpin
