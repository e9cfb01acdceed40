// The microphones of a desktop: the sound server tells which there are, the capture stream how it
// stands with the one in use. Thread: main; nothing waits for the server.
#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "adapters/cubeb/CubebMicrophone.h"
#include "adapters/pulse/SoundServer.h"
#include "ports/Microphones.h"

namespace endpin {

class DesktopMicrophones final : public Microphones {
 public:
  // `given`: the microphone that the command line names; what was chosen in an earlier run does not
  // count then. Server and microphone outlive this.
  DesktopMicrophones(const SoundServer& server, CubebMicrophone& microphone, std::string given)
      : server_(server), microphone_(microphone), chosen_(given), given_(std::move(given)) {}

  [[nodiscard]] HearingTrouble trouble() const override;
  [[nodiscard]] std::string nameInUse() const override;
  [[nodiscard]] std::vector<Microphone> connected() const override;
  [[nodiscard]] std::uint64_t changes() const override;
  void use(const std::string& id) override;

 private:
  using Clock = std::chrono::steady_clock;

  [[nodiscard]] HearingTrouble whyMissing(const SoundServer::Sources& sources) const;
  [[nodiscard]] bool isMuted(const SoundServer::Sources& sources, const std::string& name) const;

  const SoundServer& server_;
  CubebMicrophone& microphone_;
  std::string chosen_;  // id or name; empty: the system's choice
  const std::string given_;
  mutable bool wasOpen_ = false;
  mutable std::uint64_t changes_ = 0;
  mutable std::shared_ptr<const SoundServer::Sources> knownSources_;  // when they were counted last
  mutable std::string knownName_;
  mutable Clock::time_point opening_{};  // since when it opens; the beginning of time: it does not
};

}  // namespace endpin
