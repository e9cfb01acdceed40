#include "app/ScreenTable.h"

#include <algorithm>
#include <array>
#include <string>
#include <type_traits>
#include <vector>

namespace endpin {
namespace {

using Screen = ViewController;

template <auto Member>
View& viewAt(ViewController& controller) {
  return controller.*Member;
}

template <auto Member>
constexpr OutletRow outlet(std::string_view name) {
  return {name, viewAt<Member>};
}

// The kind of control that a method takes.
template <class Control>
constexpr ViewKind kKindOf = std::is_same_v<Control, Switch>       ? ViewKind::Switch
                             : std::is_same_v<Control, Slider>     ? ViewKind::Slider
                             : std::is_same_v<Control, ChoiceList> ? ViewKind::ChoiceList
                                                                   : ViewKind::Stepper;

template <auto Method>
struct Action;

template <class Owner, void (Owner::*Method)()>
struct Action<Method> {
  static constexpr std::optional<ViewKind> kSender = std::nullopt;
  static void call(ViewController& controller, View*) { (controller.*Method)(); }
};

template <class Owner, class Control, void (Owner::*Method)(Control&)>
struct Action<Method> {
  using Sender = std::remove_const_t<Control>;
  static constexpr std::optional<ViewKind> kSender = kKindOf<Sender>;
  static void call(ViewController& controller, View* sender) {
    (controller.*Method)(static_cast<Sender&>(*sender));
  }
};

template <auto Method>
constexpr ActionRow action(std::string_view name) {
  return {name, Action<Method>::kSender, Action<Method>::call};
}

constexpr OutletRow kOutlets[] = {
    outlet<&Screen::freq_label>("freq_label"),
    outlet<&Screen::noteDisplay>("noteDisplay"),
    outlet<&Screen::LEDDisplay>("LEDDisplay"),
    outlet<&Screen::LEDDisplay128>("LEDDisplay128"),
    outlet<&Screen::ring1>("ring1"),
    outlet<&Screen::ring2>("ring2"),
    outlet<&Screen::ring3>("ring3"),
    outlet<&Screen::ring4>("ring4"),
    outlet<&Screen::tunedString>("tunedString"),
    outlet<&Screen::tunedString5>("tunedString5"),
    outlet<&Screen::tunedStringiPad>("tunedStringiPad"),
    outlet<&Screen::micSensitivitySlider>("micSensitivitySlider"),
    outlet<&Screen::soundNotificationSwitch>("soundNotificationSwitch"),
    outlet<&Screen::stringSoundsSwitch>("stringSoundsSwitch"),
    outlet<&Screen::turnUpTheVolumeLabel>("turnUpTheVolumeLabel"),
    outlet<&Screen::turnUpTheVolumeTriangleLabel>("turnUpTheVolumeTriangleLabel"),

    outlet<&Screen::setA392btn>("setA392btn"),
    outlet<&Screen::setA415btn>("setA415btn"),
    outlet<&Screen::setA432btn>("setA432btn"),
    outlet<&Screen::setA440btn>("setA440btn"),
    outlet<&Screen::setA441btn>("setA441btn"),
    outlet<&Screen::setA442btn>("setA442btn"),
    outlet<&Screen::setA443btn>("setA443btn"),
    outlet<&Screen::setA444btn>("setA444btn"),
    outlet<&Screen::setA466btn>("setA466btn"),
    outlet<&Screen::calibrationFrequencyValue>("calibrationFrequencyValue"),
    outlet<&Screen::setFrequencyValueStepper>("setFrequencyValueStepper"),
    outlet<&Screen::currentTemperamentName>("currentTemperamentName"),
    outlet<&Screen::chartDisplay>("chartDisplay"),
    outlet<&Screen::firstStringFreq>("firstStringFreq"),
    outlet<&Screen::secondStringFreq>("secondStringFreq"),
    outlet<&Screen::thirdStringFreq>("thirdStringFreq"),
    outlet<&Screen::fourthStringFreq>("fourthStringFreq"),
    outlet<&Screen::freqChartSwitch>("freqChartSwitch"),
    outlet<&Screen::a3TFButton>("a3TFButton"),
    outlet<&Screen::d3TFButton>("d3TFButton"),
    outlet<&Screen::g2TFButton>("g2TFButton"),
    outlet<&Screen::c2TFButton>("c2TFButton"),
    outlet<&Screen::stopTFButton>("stopTFButton"),
    outlet<&Screen::tfnoteDisplay>("tfnoteDisplay"),
    outlet<&Screen::tfFreqLabel>("tfFreqLabel"),
    outlet<&Screen::tuningForkButton>("tuningForkButton"),
    outlet<&Screen::goToSettingsButton>("goToSettingsButton"),

    outlet<&Screen::calibrationLabel>("calibrationLabel"),
    outlet<&Screen::hZLabel>("hZLabel"),
    outlet<&Screen::micSensitivityLabel>("micSensitivityLabel"),
    outlet<&Screen::soundNotificationLabel>("soundNotificationLabel"),
    outlet<&Screen::stringSoundsLabel>("stringSoundsLabel"),
    outlet<&Screen::frequencyChartLabel>("frequencyChartLabel"),
    outlet<&Screen::aboutMsg2>("aboutMsg2"),
    outlet<&Screen::aboutCongratsMessage>("aboutCongratsMessage"),
    outlet<&Screen::establecerIdioma>("establecerIdioma"),

    outlet<&Screen::announcement>("announcement"),
    outlet<&Screen::inputLevel>("inputLevel"),
    outlet<&Screen::firstNoteHint>("firstNoteHint"),
    outlet<&Screen::troubleTitle>("troubleTitle"),
    outlet<&Screen::troubleRemedy>("troubleRemedy"),
    outlet<&Screen::microphoneLabel>("microphoneLabel"),
    outlet<&Screen::microphoneName>("microphoneName"),
    outlet<&Screen::microphoneChoices>("microphoneChoices"),
    outlet<&Screen::fineHearingLabel>("fineHearingLabel"),
    outlet<&Screen::fineHearingHint>("fineHearingHint"),
    outlet<&Screen::fineHearingSwitch>("fineHearingSwitch"),
    outlet<&Screen::byEarMark>("byEarMark"),
    outlet<&Screen::byEarHint>("byEarHint"),
    outlet<&Screen::fineHearingButton>("fineHearingButton"),
};

constexpr ActionRow kActions[] = {
    action<&Screen::setA392>("setA392"),
    action<&Screen::setA415>("setA415"),
    action<&Screen::setA432>("setA432"),
    action<&Screen::setA440>("setA440"),
    action<&Screen::setA441>("setA441"),
    action<&Screen::setA442>("setA442"),
    action<&Screen::setA443>("setA443"),
    action<&Screen::setA444>("setA444"),
    action<&Screen::setA466>("setA466"),
    action<&Screen::setFrequencyValue>("setFrequencyValue"),
    action<&Screen::micSensitivity>("micSensitivity"),
    action<&Screen::soundNotificationAction>("soundNotificationAction"),
    action<&Screen::toggleStringSounds>("toggleStringSounds"),
    action<&Screen::toggleFreqChart>("toggleFreqChart"),
    action<&Screen::playA3>("playA3"),
    action<&Screen::playD3>("playD3"),
    action<&Screen::playG2>("playG2"),
    action<&Screen::playC2>("playC2"),
    action<&Screen::stopFreqPlay>("stopFreqPlay"),
    action<&Screen::disableTemporarilySoundConfirmation>("disableTemporarilySoundConfirmation"),
    action<&Screen::enableSoundConfirmation>("enableSoundConfirmation"),
    action<&Screen::returnToMainScreen>("returnToMainScreen"),
    action<&Screen::chooseMicrophone>("chooseMicrophone"),
    action<&Screen::toggleFineHearing>("toggleFineHearing"),
    action<&Screen::turnOnFineHearing>("turnOnFineHearing"),
};

template <class Row>
const Row* rowNamed(std::span<const Row> rows, std::string_view name) {
  const auto found =
      std::find_if(rows.begin(), rows.end(), [name](const Row& row) { return row.name == name; });
  return found == rows.end() ? nullptr : &*found;
}

// A property that a getter of `Kind` reads, and that a setter takes over from the user if there is
// one.
template <class Kind, auto Getter>
ViewValue readWith(const View& view) {
  return (static_cast<const Kind&>(view).*Getter)();
}
template <class Kind, auto Setter, class Value>
void writeWith(View& view, const ViewValue& value) {
  if (const auto* typed = std::get_if<Value>(&value)) (static_cast<Kind&>(view).*Setter)(*typed);
}
ViewValue readBlinking(const View& view) {
  return view.animation().repeat;
}

using Properties = std::vector<ViewProperty>;

Properties withOwn(Properties own) {
  Properties all = {{"hidden", readWith<View, &View::hidden>},
                    {"alpha", readWith<View, &View::alpha>},
                    {"blinking", readBlinking}};
  all.insert(all.end(), own.begin(), own.end());
  return all;
}

}  // namespace

std::span<const OutletRow> outletTable() {
  return kOutlets;
}

std::span<const ActionRow> actionTable() {
  return kActions;
}

const OutletRow* outletNamed(std::string_view name) {
  return rowNamed(outletTable(), name);
}

const ActionRow* actionNamed(std::string_view name) {
  return rowNamed(actionTable(), name);
}

bool perform(const ActionRow& action, ViewController& controller, View* sender) {
  if (action.sender && (!sender || sender->kind() != *action.sender)) return false;
  action.call(controller, sender);
  return true;
}

std::string_view nameOf(ViewKind kind) {
  constexpr std::array<std::string_view, 9> kNames = {"label",      "imageView", "button",
                                                      "switch",     "slider",    "stepper",
                                                      "pickerView", "meter",     "choiceList"};
  return kNames[static_cast<std::size_t>(kind)];
}

// By kind, in the order of ViewKind.
std::span<const ViewProperty> propertiesOf(ViewKind kind) {
  constexpr auto kWriteValue = writeWith<ValueControl, &ValueControl::setValue, double>;
  static const Properties kValue =
      withOwn({{"value", readWith<ValueControl, &ValueControl::value>, kWriteValue}});
  static const std::array<Properties, 9> kProperties = {
      withOwn({{"text", readWith<Label, &Label::text>}}),
      withOwn({{"image", readWith<ImageView, &ImageView::image>}}),
      withOwn({{"enabled", readWith<Button, &Button::enabled>},
               {"backgroundImage", readWith<Button, &Button::backgroundImage>}}),
      withOwn({{"on", readWith<Switch, &Switch::isOn>, writeWith<Switch, &Switch::setOn, bool>}}),
      kValue,
      kValue,
      withOwn({}),
      withOwn({{"level", readWith<Meter, &Meter::level>}}),
      withOwn({{"choices", readWith<ChoiceList, &ChoiceList::choices>},
               {"chosen", readWith<ChoiceList, &ChoiceList::chosen>,
                writeWith<ChoiceList, &ChoiceList::setChosen, double>}}),
  };
  return kProperties[static_cast<std::size_t>(kind)];
}

}  // namespace endpin
