// A sound server that belongs to one test: its own folder and socket, a speaker that goes nowhere
// (`speaker`), and a microphone (`virtmic`) that hears what the test plays into it.
#pragma once

#include <cstring>
#include <memory>

#include "tests/support/ChildProcess.h"
#include "tests/support/Tone.h"

namespace endpin::testing {

class PrivateSoundServer {
 public:
  // Whether the server answers and has both devices; if not, reason() is for the skip that names
  // it. Also restarts a killed server on the same socket.
  bool start() {
    kill();
    server_ = std::make_unique<ChildProcess>(
        hurried({"pulseaudio", "-n", "--daemonize=no", "--use-pid-file=no", "--exit-idle-time=-1",
                 "--disable-shm=yes", "--realtime=no", "--high-priority=no", "-L",
                 "module-native-protocol-unix auth-anonymous=1 auth-cookie-enabled=0 socket=" +
                     folder_.file("socket"),
                 "-L", kSpeaker, "-L", kMicrophoneFeed, "-L", kMicrophone}),
        environment());
    soon(std::chrono::seconds(10), [this] { return !server_->running() || control("info"); });
    if (control("set-default-sink speaker") && control("set-default-source virtmic")) return true;
    reason_ = server_->running() ? "pulseaudio (or pactl) does not answer"
                                 : "pulseaudio ended: " + server_->errors();
    return false;
  }
  const std::string& reason() const { return reason_; }

  // What a program needs to meet this server, and to keep its settings out of the user's home.
  Environment environment() const {
    Environment all = {{"PULSE_SERVER", "unix:" + folder_.file("socket")}};
    for (const char* name :
         {"HOME", "XDG_RUNTIME_DIR", "XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_STATE_HOME",
          "XDG_CACHE_HOME", "PULSE_RUNTIME_PATH", "PULSE_STATE_PATH"}) {
      all[name] = folder_.path();
    }
    return all;
  }

  // Plays a sound file into the microphone from now on; silence follows its end or the destructor.
  // The player keeps 0.3 s in hand; what the microphone hears is no later for it.
  ChildProcess playIntoMicrophone(const std::string& path) const {
    return ChildProcess(hurried({"paplay", "--latency-msec=300", "--device=micfeed", path}),
                        environment());
  }

  // Records a device ("virtmic", "speaker.monitor") from now on, 16 bits mono at 48000 Hz.
  ChildProcess record(const std::string& device) const {
    return ChildProcess({"parec", "--latency-msec=20", "--device=" + device, "--format=s16le",
                         "--rate=48000", "--channels=1", "--raw"},
                        environment());
  }
  static Sound recorded(const ChildProcess& recording) {
    const std::string bytes = recording.output();
    std::vector<std::int16_t> samples(bytes.size() / 2);
    std::memcpy(samples.data(), bytes.data(), samples.size() * 2);
    Sound sound{48000.0, {}};
    for (const std::int16_t sample : samples) sound.samples.push_back(sample / 32768.0F);
    return sound;
  }

  // Tells the server something in words of pactl; returns whether it obeyed.
  bool control(const std::string& words) const {
    const Command command = {"sh", "-c", "pactl " + words};
    return runToEnd(command, std::chrono::seconds(5), environment()).exitCode == 0;
  }

  void kill() { server_.reset(); }
  void freeze() { server_->signal(SIGSTOP); }
  void thaw() { server_->signal(SIGCONT); }
  // These return whether they changed what they say.
  bool removeMicrophone() {
    return control("unload-module $(pactl list short modules | grep =virtmic | cut -f1)");
  }
  bool addMicrophone() {
    return control("load-module " + kMicrophone) && control("set-default-source virtmic");
  }

  const TempDirectory& folder() const { return folder_; }

 private:
  // Rewinding would delay the null sinks by seconds and tear gaps into what they pass on.
  inline static const std::string kSpeaker =
      "module-null-sink sink_name=speaker norewinds=1 rate=48000";
  inline static const std::string kMicrophoneFeed =
      "module-null-sink sink_name=micfeed norewinds=1 rate=48000 channels=1";
  inline static const std::string kMicrophone =
      "module-remap-source source_name=virtmic master=micfeed.monitor";

  // A busy machine must not tear gaps into the sound (root may hurry, others may try).
  static Command hurried(Command command) {
    command.insert(command.begin(), {"nice", "-n", "-15"});
    return command;
  }

  TempDirectory folder_;  // outlives the server that writes into it
  std::unique_ptr<ChildProcess> server_;
  std::string reason_;
};

}  // namespace endpin::testing
