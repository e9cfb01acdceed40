#include "tuner/TunedStringFeedback.h"

#include <fmt/format.h>

#include <algorithm>
#include <string>

#include "ports/DeviceTable.h"

namespace endpin {
namespace {

constexpr double kRearmAfterMatch = 15.0;
constexpr std::array<const char*, 4> kOrdinals = {"1st", "2nd", "3rd", "4th"};

}  // namespace

TunedStringFeedback::TunedStringFeedback(TunerOutlets& outlets, const Ports& ports)
    : outlets_(outlets), ports_(ports) {}

void TunedStringFeedback::displayTunedString(int number) {
  if (number < 1 || number > 4) return;
  outlets_.ring(number).setImage(fmt::format("ring{}.png", number));
  ringShown_[index(number)] = true;
  showStringPicture(number);
}

// A screen of unknown height keeps the picture it has. The smallest phones have a view of their
// own.
void TunedStringFeedback::showStringPicture(int number) {
  const bool tablet = ports_.device.isTablet();
  if (!tablet && !ports_.device.isPhone()) return;
  const DeviceModel* model = deviceOf(tablet ? InterfaceIdiom::Tablet : InterfaceIdiom::Phone,
                                      ports_.device.screenHeight());
  if (!model) return;
  const std::string variant = model->stringPictures;
  ImageView& view = tablet            ? outlets_.tunedStringiPad
                    : variant.empty() ? outlets_.tunedString
                                      : outlets_.tunedString5;
  view.setImage(fmt::format("{}_string{}.png", kOrdinals[index(number)], variant));
}

void TunedStringFeedback::removeRings() {
  ringShown_.fill(false);
  for (int number = 1; number <= 4; ++number) outlets_.ring(number).setImage("");
}

void TunedStringFeedback::resetTuningBools() {
  beepPlayed_.fill(false);
}

void TunedStringFeedback::playSoundOnce(int number) {
  tuned_[index(number)] = true;
  if (!soundNotificationOn) {
    ports_.log.line("Sonido desactivado");
    return;
  }
  if (beepPlayed_[index(number)]) return;
  if (beepSoundPlayer_) beepSoundPlayer_->play();
  beepPlayed_[index(number)] = true;
  ports_.runLoop.performAfterDelay(kRearmAfterMatch, [this] { resetTuningBools(); });
}

bool TunedStringFeedback::allStringsTuned() const {
  return std::all_of(tuned_.begin(), tuned_.end(), [](bool tuned) { return tuned; });
}

void TunedStringFeedback::prepareBeepSound() {
  beepSoundPlayer_ =
      ports_.audioPlayers.playerWithContentsOf(ports_.bundle.resourcePath() + "/beep-full.mp3");
}

void TunedStringFeedback::markTuningFork(bool inUse) {
  ports_.settings.setInteger("currentlyUsingTuningFork", inUse ? 1 : 0);
  ports_.settings.synchronize();
  tuningForkInUse = inUse;
  ports_.log.line(fmt::format("Tuning fork is enabled: {:d}", inUse));
}

void TunedStringFeedback::soundNotificationAction(const Switch& sender) {
  applySwitch(sender, soundNotificationOn, "soundNotificationEnabled");
}

void TunedStringFeedback::toggleStringSounds(const Switch& sender) {
  applySwitch(sender, stringSoundsOn, "stringSoundsEnabled");
}

void TunedStringFeedback::applySwitch(const Switch& sender, bool& flag, const char* key) {
  flag = sender.isOn();
  ports_.settings.setBool(key, flag);
  ports_.settings.synchronize();
  ports_.log.line(fmt::format("Has {} el Switch, valor de la variable = {:d}",
                              flag ? "encendido" : "apagado", flag));
}

}  // namespace endpin
