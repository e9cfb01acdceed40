#include "tests/support/PrivateSoundServer.h"

#include <csignal>
#include <cstring>
#include <thread>

namespace endpin::testing {
namespace {

using namespace std::chrono_literals;

// Rewinding would delay the null sinks by seconds and tear gaps into what they pass on.
const std::string kSpeaker = "module-null-sink sink_name=speaker norewinds=1 rate=48000";
const std::string kMicrophoneFeed =
    "module-null-sink sink_name=micfeed norewinds=1 rate=48000 channels=1";
const std::string kMicrophone = "module-remap-source source_name=virtmic master=micfeed.monitor";

// A busy machine must not tear gaps into the sound: both hurry where they may (as root), and the
// player keeps 0.3 s in hand. What the microphone hears is no later for it.
Command hurried(Command command) {
  command.insert(command.begin(), {"nice", "-n", "-15"});
  return command;
}

}  // namespace

Environment PrivateSoundServer::environment() const {
  Environment all = {{"PULSE_SERVER", "unix:" + folder_.file("socket")}};
  for (const char* name :
       {"HOME", "XDG_RUNTIME_DIR", "XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_STATE_HOME",
        "XDG_CACHE_HOME", "PULSE_RUNTIME_PATH", "PULSE_STATE_PATH"}) {
    all[name] = folder_.path();
  }
  return all;
}

bool PrivateSoundServer::start() {
  kill();
  const std::string protocol = "module-native-protocol-unix socket=" + folder_.file("socket") +
                               " auth-anonymous=1 auth-cookie-enabled=0";
  server_ = std::make_unique<ChildProcess>(
      hurried({"pulseaudio", "-n", "--daemonize=no", "--use-pid-file=no", "--exit-idle-time=-1",
               "--disable-shm=yes", "--realtime=no", "--high-priority=no", "-L", protocol, "-L",
               kSpeaker, "-L", kMicrophoneFeed, "-L", kMicrophone}),
      environment());
  if (!answersInTime()) return false;
  if (control("set-default-sink speaker") && control("set-default-source virtmic")) return true;
  reason_ = "the private sound server has no virtual microphone";
  return false;
}

bool PrivateSoundServer::answersInTime() {
  const auto deadline = std::chrono::steady_clock::now() + 10s;
  while (server_->running() && std::chrono::steady_clock::now() < deadline) {
    if (control("info")) return true;
    std::this_thread::sleep_for(10ms);
  }
  const std::optional<int> code = server_->waitFor(0ms);
  reason_ = !code         ? "pulseaudio (or pactl) did not answer within 10 s"
            : code == 127 ? "the program pulseaudio is not installed"
                          : "pulseaudio ended: " + server_->errors();
  return false;
}

bool PrivateSoundServer::control(const std::string& words) const {
  return runToEnd({"sh", "-c", "pactl " + words}, 5s, environment()).exitCode == 0;
}

ChildProcess PrivateSoundServer::playIntoMicrophone(const std::string& path) const {
  return ChildProcess(hurried({"paplay", "--latency-msec=300", "--device=micfeed", path}),
                      environment());
}

ChildProcess PrivateSoundServer::record(const std::string& device) const {
  return ChildProcess({"parec", "--latency-msec=20", "--device=" + device, "--format=s16le",
                       "--rate=48000", "--channels=1", "--raw"},
                      environment());
}

Sound PrivateSoundServer::recorded(const ChildProcess& recording) {
  const std::string bytes = recording.output();
  std::vector<std::int16_t> samples(bytes.size() / 2);
  std::memcpy(samples.data(), bytes.data(), samples.size() * 2);
  Sound sound{48000.0, {}};
  for (const std::int16_t sample : samples) sound.samples.push_back(sample / 32768.0F);
  return sound;
}

void PrivateSoundServer::freeze() {
  server_->signal(SIGSTOP);
}
void PrivateSoundServer::thaw() {
  server_->signal(SIGCONT);
}

// By the number of its module: the speaker and the feed of the microphone are of one kind.
bool PrivateSoundServer::remove(const std::string& device) {
  return control("unload-module $(pactl list short modules | grep _name=" + device + " | cut -f1)");
}

bool PrivateSoundServer::addMicrophone() {
  return control("load-module " + kMicrophone) && control("set-default-source virtmic");
}

bool PrivateSoundServer::addSpeaker() {
  return control("load-module " + kSpeaker) && control("set-default-sink speaker");
}

}  // namespace endpin::testing
