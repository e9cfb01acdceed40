// When the dialog that asks for a rating may appear, on a platform that decides this itself. The
// rating prompt asks as often as forty times a second; the user is asked once a run at most, not
// within the days after "Remind me later", and not before ten seconds have passed without a sound.
//
// Called by the adapter that shows the dialog, and by tests. Thread: main.
#pragma once

#include <functional>
#include <memory>

#include "ports/RatingPlatform.h"

namespace endpin {

class RatingManners {
 public:
  static constexpr int kSilence = 10;  // seconds

  // They outlive the manners.
  struct Ports {
    RunLoop& runLoop;  // in whose time the silence is measured
    const Clock& clock;
    const SettingsStore& settings;
    std::function<bool()> stringSounds = {};  // at this moment; empty: never
  };

  explicit RatingManners(Ports ports) : ports_(std::move(ports)) {}
  RatingManners(const RatingManners&) = delete;
  RatingManners& operator=(const RatingManners&) = delete;

  // Shows the dialog and returns true; false when the user is busy, as with an open panel.
  using Show = std::function<bool()>;

  // Calls `show` when it has been silent long enough, and again until it succeeds: it takes the
  // place of one that waits. Drops it when the user was asked in this run or wants to be left
  // alone.
  void whenPolite(Show show);

 private:
  [[nodiscard]] bool leftAlone() const;
  void look();
  void lookLater();

  const Ports ports_;
  Show waiting_;
  int silentLooks_ = 0;
  bool looking_ = false;
  bool asked_ = false;
  const std::shared_ptr<RatingManners*> self_ = std::make_shared<RatingManners*>(this);
};

}  // namespace endpin
