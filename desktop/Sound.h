// The sound of a desktop, in and out. Thread: main.
#pragma once

#include <optional>

#include "adapters/cubeb/CubebMicrophone.h"
#include "adapters/cubeb/CubebOutput.h"
#include "adapters/cubeb/CubebPlayers.h"
#include "adapters/pulse/SoundServer.h"
#include "desktop/FileInput.h"
#include "desktop/Options.h"
#include "ports/Log.h"

namespace endpin {

class Sound {
 public:
  // Throws ProgramError for a sound file that cannot be used. `log` outlives the sound.
  Sound(const Options& options, Log& log) : microphone_(options.inputDevice, log) {
    if (!options.input.empty()) file_.emplace(options.input);
  }

  // A sound file plays in real time from now on. `runLoop` ends before the sound does.
  void follow(RunLoop& runLoop) {
    if (file_) file_->follow(runLoop);
  }

  AudioInput& input() { return file_ ? static_cast<AudioInput&>(*file_) : microphone_; }
  AudioSession& session() { return session_; }
  AudioPlayers& players() { return players_; }
  AudioOutput& output() { return output_; }

 private:
  std::optional<FileInput> file_;
  CubebMicrophone microphone_;
  SoundServer server_;
  DesktopAudioSession session_{server_};
  CubebPlayers players_;
  CubebOutput output_;
};

}  // namespace endpin
