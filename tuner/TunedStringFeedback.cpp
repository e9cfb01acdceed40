#include "tuner/TunedStringFeedback.h"

#include <fmt/format.h>

#include <algorithm>
#include <initializer_list>

namespace endpin {
namespace {

constexpr double kRearmAfterMatch = 15.0;
constexpr std::array<const char*, 4> kOrdinals = {"1st", "2nd", "3rd", "4th"};

// Which screens show which variant of the string pictures, and in which view. The lists are the
// screens that exist: a height in none of them gets no picture.
struct PictureRow {
  InterfaceIdiom idiom;
  std::initializer_list<double> heights;  // points, compared exactly
  ImageView TunerOutlets::*view;
  const char* suffix;
};
const std::initializer_list<PictureRow> kPictures = {
    {InterfaceIdiom::Tablet, {1024}, &TunerOutlets::tunedStringiPad, "_iPad"},
    {InterfaceIdiom::Tablet,
     {1080, 1112, 1133, 1180, 1194, 1210, 1366, 1376},
     &TunerOutlets::tunedStringiPad,
     "_iPad_Pro"},
    {InterfaceIdiom::Phone, {480}, &TunerOutlets::tunedString, ""},
    {InterfaceIdiom::Phone, {568}, &TunerOutlets::tunedString5, "_5"},
    {InterfaceIdiom::Phone, {667}, &TunerOutlets::tunedString5, "_6"},
    {InterfaceIdiom::Phone,
     {736, 812, 844, 852, 874, 896, 926, 932, 956},
     &TunerOutlets::tunedString5,
     "_6plus"},
};

}  // namespace

TunedStringFeedback::TunedStringFeedback(TunerOutlets& outlets, const Ports& ports)
    : outlets_(outlets), ports_(ports) {}

void TunedStringFeedback::displayTunedString(int number) {
  if (number < 1 || number > 4) return;
  outlets_.ring(number).setImage(fmt::format("ring{}.png", number));
  ringShown_[index(number)] = true;
  showStringPicture(number);
}

void TunedStringFeedback::showStringPicture(int number) {
  const int idiom =
      ports_.device.userInterfaceIdiom().value_or(static_cast<int>(InterfaceIdiom::Phone));
  const double height = ports_.device.screenHeight();
  for (const PictureRow& row : kPictures) {
    if (static_cast<int>(row.idiom) != idiom) continue;
    if (std::find(row.heights.begin(), row.heights.end(), height) == row.heights.end()) continue;
    (outlets_.*row.view)
        .setImage(fmt::format("{}_string{}.png", kOrdinals[index(number)], row.suffix));
  }
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
