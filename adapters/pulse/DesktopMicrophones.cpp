#include "adapters/pulse/DesktopMicrophones.h"

#include <algorithm>
#include <utility>

namespace endpin {
namespace {

using State = MicrophoneStatus::State;

// To open a microphone takes a moment; a server that lets one wait longer does not answer.
constexpr auto kOpeningLimit = std::chrono::milliseconds(1500);

}  // namespace

HearingTrouble DesktopMicrophones::trouble() const {
  const MicrophoneStatus status = microphone_.status();
  const auto sources = server_.sources();
  if (status.state != State::Opening) opening_ = {};
  switch (status.state) {
    case State::Closed:
      return HearingTrouble::None;
    case State::Opening:
      if (opening_ == Clock::time_point{}) opening_ = Clock::now();
      return Clock::now() - opening_ > kOpeningLimit ? HearingTrouble::NoSoundService
                                                     : HearingTrouble::None;
    case State::Open:
      wasOpen_ = true;
      return isMuted(*sources, status.text) ? HearingTrouble::MicrophoneMuted
                                            : HearingTrouble::None;
    case State::Missing:
      break;
  }
  return whyMissing(*sources);
}

// A microphone that is there and cannot be had means that the server does not do its work.
HearingTrouble DesktopMicrophones::whyMissing(const SoundServer::Sources& sources) const {
  if (!sources.connected) return HearingTrouble::NoSoundService;
  const auto& all = sources.microphones;
  const bool there =
      chosen_.empty() ? !all.empty() : std::any_of(all.begin(), all.end(), [this](const auto& one) {
        return one.id == chosen_ || one.name == chosen_;
      });
  if (there) return HearingTrouble::NoSoundService;
  return chosen_.empty() && !wasOpen_ ? HearingTrouble::NoMicrophone
                                      : HearingTrouble::MicrophoneNotFound;
}

// By the name that the stream tells; the system's choice where no name fits.
bool DesktopMicrophones::isMuted(const SoundServer::Sources& sources,
                                 const std::string& name) const {
  const auto& all = sources.microphones;
  auto used = std::find_if(all.begin(), all.end(),
                           [&](const auto& one) { return one.name == name || one.id == name; });
  if (used == all.end()) {
    used = std::find_if(all.begin(), all.end(), [](const auto& one) { return one.isDefault; });
  }
  return used != all.end() && used->muted;
}

std::string DesktopMicrophones::nameInUse() const {
  const MicrophoneStatus status = microphone_.status();
  return status.state == State::Open ? status.text : "";
}

std::vector<Microphone> DesktopMicrophones::connected() const {
  std::vector<Microphone> microphones;
  for (const auto& source : server_.sources()->microphones) {
    microphones.push_back({source.id, source.name});
  }
  return microphones;
}

std::uint64_t DesktopMicrophones::changes() const {
  auto sources = server_.sources();
  std::string name = nameInUse();
  if (sources != knownSources_ || name != knownName_) ++changes_;
  knownSources_ = std::move(sources);
  knownName_ = std::move(name);
  return changes_;
}

void DesktopMicrophones::use(const std::string& id) {
  const bool listening = microphone_.status().state != State::Closed;
  if (!listening && !given_.empty()) return;
  wasOpen_ = wasOpen_ && id == chosen_;
  chosen_ = id;
  microphone_.use(id);
}

}  // namespace endpin
