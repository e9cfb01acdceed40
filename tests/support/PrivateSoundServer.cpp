#include "tests/support/PrivateSoundServer.h"

#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <sstream>
#include <thread>

namespace endpin::testing {
namespace {

using namespace std::chrono_literals;

// Rewinding would delay the null sinks by seconds and tear gaps into what they pass on.
constexpr const char* kSpeaker = "module-null-sink sink_name=speaker norewinds=1 rate=48000";
constexpr const char* kMicrophoneFeed =
    "module-null-sink sink_name=micfeed norewinds=1 rate=48000 channels=1";
const std::vector<std::string> kMicrophone = {"module-remap-source", "source_name=virtmic",
                                              "master=micfeed.monitor"};

// A busy machine must not tear gaps into the sound: both hurry where they may (as root), and the
// player keeps 0.3 s in hand. What the microphone hears is no later for it.
Command hurried(const Command& command) {
  Command all = {"nice", "-n", "-15"};
  all.insert(all.end(), command.begin(), command.end());
  return all;
}

std::string joined(const std::vector<std::string>& words) {
  std::string text;
  for (const std::string& word : words) text += (text.empty() ? "" : " ") + word;
  return text;
}

}  // namespace

Environment PrivateSoundServer::environment() const {
  return {{"HOME", folder_.path().string()},
          {"XDG_RUNTIME_DIR", folder_.path().string()},
          {"XDG_CONFIG_HOME", folder_.file("config")},
          {"XDG_DATA_HOME", folder_.file("data")},
          {"XDG_STATE_HOME", folder_.file("state")},
          {"XDG_CACHE_HOME", folder_.file("cache")},
          {"PULSE_RUNTIME_PATH", folder_.file("pulse")},
          {"PULSE_STATE_PATH", folder_.file("pulse-state")},
          {"PULSE_SERVER", "unix:" + socket()}};
}

bool PrivateSoundServer::start() {
  kill();
  for (const char* name : {"pulse", "pulse-state"}) {
    std::filesystem::create_directory(folder_.path() / name);
    std::filesystem::permissions(folder_.path() / name, std::filesystem::perms::owner_all);
  }
  const std::string protocol =
      "module-native-protocol-unix socket=" + socket() + " auth-anonymous=1 auth-cookie-enabled=0";
  server_ = std::make_unique<ChildProcess>(
      hurried({"pulseaudio", "-n", "--daemonize=no", "--use-pid-file=no", "--exit-idle-time=-1",
               "--disable-shm=yes", "--realtime=no", "--high-priority=no", "-L", protocol, "-L",
               kSpeaker, "-L", kMicrophoneFeed, "-L", joined(kMicrophone)}),
      environment());
  if (!answersInTime()) return false;
  if (control({"set-default-sink", "speaker"}) && control({"set-default-source", "virtmic"}) &&
      hasMicrophone()) {
    return true;
  }
  reason_ = "the private sound server has no virtual microphone";
  return false;
}

bool PrivateSoundServer::answersInTime() {
  const auto deadline = std::chrono::steady_clock::now() + 10s;
  while (std::chrono::steady_clock::now() < deadline) {
    if (!server_->running()) {
      const int code = *server_->waitFor(0ms);
      reason_ = code == 127 ? "the program pulseaudio is not installed"
                            : "pulseaudio ended with code " + std::to_string(code) + ": " +
                                  server_->errors();
      return false;
    }
    if (control({"info"})) return true;
    std::this_thread::sleep_for(10ms);
  }
  reason_ = "pulseaudio (or pactl) did not answer within 10 s";
  return false;
}

bool PrivateSoundServer::control(const std::vector<std::string>& words, std::string* answer) const {
  Command command = {"pactl"};
  command.insert(command.end(), words.begin(), words.end());
  const Finished finished = runToEnd(command, 5s, environment());
  if (answer != nullptr) *answer = finished.output;
  return finished.exitCode == 0;
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
  Sound sound{48000.0, std::vector<float>(bytes.size() / 2)};
  for (size_t i = 0; i < sound.samples.size(); ++i) {
    std::int16_t sample = 0;
    std::memcpy(&sample, bytes.data() + 2 * i, sizeof sample);
    sound.samples[i] = static_cast<float>(sample) / 32768.0F;
  }
  return sound;
}

void PrivateSoundServer::kill() {
  server_.reset();
}
void PrivateSoundServer::freeze() {
  server_->signal(SIGSTOP);
}
void PrivateSoundServer::thaw() {
  server_->signal(SIGCONT);
}

bool PrivateSoundServer::lists(const char* kind, const std::string& name) const {
  std::string devices;
  return control({"list", "short", kind}, &devices) &&
         devices.find('\t' + name + '\t') != std::string::npos;
}

bool PrivateSoundServer::removeMicrophone() {
  return hasMicrophone() && control({"unload-module", "module-remap-source"}) && !hasMicrophone();
}

bool PrivateSoundServer::addMicrophone() {
  std::vector<std::string> words = {"load-module"};
  words.insert(words.end(), kMicrophone.begin(), kMicrophone.end());
  return control(words) && control({"set-default-source", "virtmic"}) && hasMicrophone();
}

// Its module is named by its number: the feed of the microphone is of the same kind.
bool PrivateSoundServer::removeSpeaker() {
  std::string modules;
  if (!control({"list", "short", "modules"}, &modules)) return false;
  std::istringstream lines(modules);
  for (std::string line; std::getline(lines, line);) {
    if (line.find("sink_name=speaker") == std::string::npos) continue;
    return control({"unload-module", line.substr(0, line.find('\t'))}) && !hasSpeaker();
  }
  return false;
}

bool PrivateSoundServer::addSpeaker() {
  std::vector<std::string> words = {"load-module"};
  std::istringstream module(kSpeaker);
  for (std::string word; module >> word;) words.push_back(word);
  return control(words) && control({"set-default-sink", "speaker"}) && hasSpeaker();
}

}  // namespace endpin::testing
