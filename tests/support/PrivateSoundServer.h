// A sound server that belongs to one test: its own folders and socket, a speaker that goes nowhere
// (`speaker`), and a microphone (`virtmic`) that hears what the test plays into it. It never
// touches the sound of the machine it runs on, and a machine without sound hardware will do.
//
// A machine without the server's programs gets a false from start() and the reason in words, for
// the skip that names it.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "tests/support/ChildProcess.h"
#include "tests/support/TempDirectory.h"
#include "tests/support/Tone.h"

namespace endpin::testing {

class PrivateSoundServer {
 public:
  // Returns whether the server answers and both devices are there. Also restarts a killed server on
  // the same socket.
  bool start();
  const std::string& reason() const { return reason_; }

  // What a program needs to meet this server, and to keep its settings out of the user's home.
  Environment environment() const;

  // Plays a sound file into the microphone from now on; silence follows its end or the destructor.
  ChildProcess playIntoMicrophone(const std::string& path) const;

  // Records a device ("virtmic", "speaker.monitor") from now on, 16 bits mono at 48000 Hz.
  ChildProcess record(const std::string& device) const;
  static Sound recorded(const ChildProcess& recording);

  void kill();
  void freeze();
  void thaw();
  // Both return whether they changed what they say.
  bool removeMicrophone();
  bool addMicrophone();
  // Without the speaker the feed of the microphone is the only output left, and gets what plays.
  bool removeSpeaker();
  bool addSpeaker();

  const TempDirectory& folder() const { return folder_; }

 private:
  std::string socket() const { return folder_.file("socket"); }
  bool control(const std::vector<std::string>& words, std::string* answer = nullptr) const;
  bool answersInTime();
  bool lists(const char* kind, const std::string& name) const;
  bool hasMicrophone() const { return lists("sources", "virtmic"); }
  bool hasSpeaker() const { return lists("sinks", "speaker"); }

  // The folder outlives the server that writes into it.
  TempDirectory folder_;
  std::unique_ptr<ChildProcess> server_;
  std::string reason_;
};

}  // namespace endpin::testing
