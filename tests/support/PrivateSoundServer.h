// A sound server that belongs to one test: its own folder and socket, a speaker that goes nowhere
// (`speaker`), and a microphone (`virtmic`) that hears what the test plays into it.
#pragma once

#include <memory>
#include <string>

#include "tests/support/ChildProcess.h"
#include "tests/support/Tone.h"

namespace endpin::testing {

class PrivateSoundServer {
 public:
  // Whether the server answers and has both devices; if not, reason() is for the skip that names
  // it. Also restarts a killed server on the same socket.
  bool start();
  const std::string& reason() const { return reason_; }

  // What a program needs to meet this server, and to keep its settings out of the user's home.
  Environment environment() const;

  // Plays a sound file into the microphone from now on; silence follows its end or the destructor.
  ChildProcess playIntoMicrophone(const std::string& path) const;

  // Records a device ("virtmic", "speaker.monitor") from now on, 16 bits mono at 48000 Hz.
  ChildProcess record(const std::string& device) const;
  static Sound recorded(const ChildProcess& recording);

  // Tells the server something in words of pactl; returns whether it obeyed.
  bool control(const std::string& words) const;

  void kill() { server_.reset(); }
  void freeze();
  void thaw();
  // These return whether they changed what they say.
  bool removeMicrophone() { return remove("virtmic"); }
  bool addMicrophone();
  // Without the speaker the feed of the microphone is the only output left, and gets what plays.
  bool removeSpeaker() { return remove("speaker"); }
  bool addSpeaker();

  const TempDirectory& folder() const { return folder_; }

 private:
  bool answersInTime();
  bool remove(const std::string& device);

  TempDirectory folder_;  // outlives the server that writes into it
  std::unique_ptr<ChildProcess> server_;
  std::string reason_;
};

}  // namespace endpin::testing
