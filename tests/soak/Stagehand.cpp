#include "tests/soak/Stagehand.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>
#include <thread>

namespace endpin::soak {
namespace {

using namespace std::chrono_literals;

constexpr std::array<double, 3> kTones = {220.0, 440.0 / 3, 98.0};  // hertz
constexpr double kToneSeconds = 40;

void sleepFor(double seconds) {
  std::this_thread::sleep_for(std::chrono::duration<double>(seconds));
}

std::string toneFile(const testing::PrivateSoundServer& server, std::size_t string) {
  return server.folder().file(fmt::format("tone{}.wav", string));
}

}  // namespace

const std::vector<Stagehand::Fault>& Stagehand::faults() {
  using Hand = Stagehand;
  static const std::vector<Fault> kFaults = {
      {"server killed", 0.2, 4, false, &Hand::kill, &Hand::restart},
      {"server frozen", 0.3, 6, false, &Hand::freeze, &Hand::thaw},
      {"microphone removed", 0.3, 4, false, &Hand::removeMicrophone, &Hand::addMicrophone},
      {"speaker removed", 0.3, 4, true, &Hand::removeSpeaker, &Hand::addSpeaker},
  };
  return kFaults;
}

Stagehand::Stagehand(testing::PrivateSoundServer& server, LiveScreen& screen, std::uint32_t seed)
    : server_(server), screen_(screen), dice_(seed), recoveries_(faults().size()) {
  for (std::size_t i = 0; i < kTones.size(); ++i) {
    writeWav(toneFile(server, i), testing::bowedTone(48000.0, kToneSeconds, kTones[i]));
  }
}

void Stagehand::work(double seconds) {
  for (std::size_t which = 0; which < faults().size(); ++which) round(which);
  sizeBefore_ = sizeAtRest();
  const auto end = Clock::now() + std::chrono::duration<double>(seconds);
  while (Clock::now() < end) round(dice_.below(faults().size()));
  sizeAfter_ = sizeAtRest();
  player_.reset();
}

void Stagehand::round(std::size_t which) {
  const Fault& fault = faults()[which];
  const bool tone = fault.losesSpeaker || dice_.chance(0.4);
  screen_.setMode(tone ? LiveScreen::Mode::Tone : LiveScreen::Mode::Wander);
  startTone();
  expect(until([this] { return hearsPitch(); }, Clock::now()).has_value(), "a tone is heard");
  if (tone) {
    const auto sounds = until([this] { return screen_.toneWanted(); }, Clock::now());
    expect(sounds.has_value(), "the tuning fork is pressed");
  }
  sleepFor(dice_.between(0.2, 2));
  (this->*fault.begin)();
  const double length = dice_.ratioBetween(fault.shortest, fault.longest);
  bool lost = false;
  const auto end = Clock::now() + std::chrono::duration<double>(length);
  for (; Clock::now() < end; sleepFor(0.02)) lost = lost || screen_.level() < 0.002;
  takeTimes(fault, recoveries_[which], lost);
}

// The tone before goes, so that a block from before the fault cannot pass for a new one.
void Stagehand::takeTimes(const Fault& fault, Recovery& recovery, bool lost) {
  if (!fault.losesSpeaker) player_.reset();
  expect((this->*fault.end)(), fault.name);
  const auto back = Clock::now();
  if (fault.losesSpeaker) {
    const testing::ChildProcess speaker = server_.record("speaker.monitor");
    const auto sounds = [&] {
      const testing::Sound sound = testing::PrivateSoundServer::recorded(speaker);
      return std::any_of(sound.samples.begin(), sound.samples.end(),
                         [](float sample) { return std::abs(sample) > 0.01F; });
    };
    const auto time = until(sounds, back);
    expect(time.has_value(), "the tuning fork sounds again");
    recovery.speaker.push_back(time.value_or(99));
    return;
  }
  startTone();
  if (lost) {
    const auto level = until([this] { return hearsLevel(); }, back);
    expect(level.has_value(), "a level again");
    recovery.level.push_back(level.value_or(99));
  }
  const auto pitch = until([this] { return hearsPitch(); }, back);
  expect(pitch.has_value(), "a pitch again");
  recovery.pitch.push_back(pitch.value_or(99));
}

// No panel, no tone, no fault, and the tone of the microphone heard.
ProcessSize Stagehand::sizeAtRest() {
  startTone();
  expect(until([this] { return hearsPitch(); }, Clock::now()).has_value(), "a tone at rest");
  screen_.setMode(LiveScreen::Mode::Rest);
  expect(until([this] { return !screen_.toneWanted(); }, Clock::now()).has_value(),
         "the tuning fork at rest");
  sleepFor(3);
  return ProcessSize::now();
}

void Stagehand::startTone() {
  string_ = (string_ + 1) % kTones.size();
  player_.reset();
  player_.reset(new testing::ChildProcess(  // which cannot be moved
      server_.playIntoMicrophone(toneFile(server_, string_))));
}

// To half a percent, wherever the presets may be.
bool Stagehand::hearsPitch() const {
  return hearsLevel() && std::abs(screen_.frequency() / kTones[string_] - 1) < 0.005;
}

std::optional<double> Stagehand::until(const Condition& holds, Clock::time_point since) {
  const auto limit = Clock::now() + 10s;
  while (Clock::now() < limit) {
    if (holds()) return std::chrono::duration<double>(Clock::now() - since).count();
    std::this_thread::sleep_for(5ms);
  }
  return std::nullopt;
}

void Stagehand::expect(bool held, const char* what) {
  if (held) return;
  ++failures_;
  fmt::print("  did not happen: {}\n", what);
}

}  // namespace endpin::soak
