// Draws every layout with a string in tune, each panel, and what the screen shows now and then: a
// trouble, the level, warnings, choices. The pictures are staged: what is heard, which microphones
// there are and how loud the speaker is are told here; everything else is the application itself.
//   endpin-draw-screens RESOURCES FOLDER LANGUAGE [PICTURE...]
// Writes FOLDER/PICTURE.png, two pixels a point, and prints the names; without names, all of them.
#include <fmt/format.h>
#include <fmt/ranges.h>

#include <QCoreApplication>
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "adapters/log/Logs.h"
#include "adapters/offline/CountingPlayers.h"
#include "adapters/offline/FixedDevice.h"
#include "adapters/offline/MemoryStore.h"
#include "adapters/offline/SilentOutput.h"
#include "adapters/offline/VirtualRunLoop.h"
#include "app/Application.h"
#include "desktop/GuiStart.h"

namespace endpin {
namespace {

struct NoInput final : AudioInput {
  std::unique_ptr<AudioInputQueue> newInput(const AudioStreamFormat&, AudioInputCallback,
                                            void*) override {
    return nullptr;
  }
};

struct Speaker final : OfflineSession {
  [[nodiscard]] float outputVolume() const override { return volume; }
  float volume = 1;
};

struct StagedMicrophones final : Microphones {
  [[nodiscard]] HearingTrouble trouble() const override { return now; }
  [[nodiscard]] std::string nameInUse() const override { return "Built-in microphone"; }
  [[nodiscard]] std::vector<Microphone> connected() const override {
    return {{"built-in", nameInUse()}, {"clip", "Clip-on tuner microphone (USB)"}};
  }
  [[nodiscard]] std::uint64_t changes() const override { return 0; }
  void use(const std::string&) override {}
  HearingTrouble now = HearingTrouble::None;
};

// The application on its stage, for one picture.
struct Stage {
  Stage(FileBundle& bundle, const Options& options)
      : platform{.audioInput = input,
                 .audioSession = speaker,
                 .audioPlayers = players,
                 .audioOutput = output,
                 .runLoop = runLoop,
                 .settings = settings,
                 .device = device,
                 .bundle = bundle,
                 .log = log,
                 .microphones = &microphones},
        device({.idiom = static_cast<int>(options.device->idiom),
                .screenHeight = options.device->height}),
        application(platform, false),
        window(setUpWindow(options, *options.device, bundle, settings), screen(), log) {
    window.setReducedMotion(true);
    window.installLayout(options.device->layout);
    screen().firstNoteHint.setText("");
  }
  ViewController& screen() { return application.controller(); }
  void pass(double seconds) {
    runLoop.advance(seconds);
    QCoreApplication::processEvents();
  }
  // What a press on it does; named as its outlet.
  void press(const char* outlet, const char* signal = "activated") {
    QCoreApplication::processEvents();
    QQuickItem* item = find(*window.root(), QLatin1String(outlet));
    while (item && item->metaObject()->indexOfSignal(fmt::format("{}()", signal).c_str()) < 0) {
      item = item->parentItem();
    }
    if (item) QMetaObject::invokeMethod(item, signal);
    QCoreApplication::processEvents();
  }
  // By way of the visual tree, as items that a repeater made have no other parent.
  static QQuickItem* find(QQuickItem& item, const QString& name) {
    if (item.objectName() == name) return &item;
    for (QQuickItem* child : item.childItems()) {
      if (QQuickItem* found = find(*child, name)) return found;
    }
    return nullptr;
  }

  NoInput input;
  Speaker speaker;
  CountingPlayers players;
  SilentOutput output;
  VirtualRunLoop runLoop;
  MemoryStore settings;
  StagedMicrophones microphones;
  NullLog log;
  Platform platform;
  FixedDevice device;
  Application application;
  LayoutWindow window;
};

void nothing(Stage&) {}

void inTune(Stage& stage) {
  ViewController& screen = stage.screen();
  screen.noteDisplay.setText("D3");
  screen.freq_label.setText("146.8Hz");
  screen.setTunedStringsHidden(false);
  screen.displayTunedString(2);
  screen.setLamp("green64.png", "green128.png");
  screen.inputLevel.setLevel(5);
}

void firstStart(Stage& stage) {
  stage.screen().firstNoteHint.setText(stage.platform.bundle.localizedString("BowAString", "", ""));
}

void tooQuiet(Stage& stage) {
  stage.screen().inputLevel.setLevel(3);
}

void trouble(Stage& stage) {
  stage.microphones.now = HearingTrouble::MicrophoneNotFound;
  stage.pass(1);
}

void lowVolume(Stage& stage) {
  stage.speaker.volume = 0.2F;
  stage.screen().checkVolume();
  inTune(stage);
}

void lowVolumeAtTheFork(Stage& stage) {
  stage.speaker.volume = 0.2F;
  stage.screen().checkVolume();
  stage.press("d3TFButton");
}

void toneSounds(Stage& stage) {
  stage.press("d3TFButton");
}

void choosing(Stage& stage) {
  stage.press("microphoneName", "clicked");
}

void byEar(Stage& stage) {
  stage.screen().setA443();
}

void withChart(Stage& stage) {
  stage.screen().setA440();
}

struct Picture {
  std::string name;
  std::string device;  // or its size in points
  const char* panel = "";
  void (*act)(Stage&) = nothing;
};

std::vector<Picture> allPictures() {
  std::vector<Picture> all;
  for (const int height : {480, 568, 667, 736, 812, 844, 896, 932}) {
    all.push_back({fmt::format("phone-{}", height), fmt::format("phone:{}", height), "", inTune});
  }
  for (const int height : {1024, 1112, 1133, 1194, 1366}) {
    all.push_back({fmt::format("tablet-{}", height), fmt::format("tablet:{}", height), "", inTune});
  }
  const char* const phone = "phone:844";
  const Picture more[] = {{"panel-settings", phone, "settings"},
                          {"panel-microphones", phone, "settings", choosing},
                          {"panel-settings-480", "phone:480", "settings"},
                          {"panel-fork", phone, "fork", toneSounds},
                          {"panel-fork-volume", phone, "fork", lowVolumeAtTheFork},
                          {"panel-chart", phone, "chart", withChart},
                          {"panel-chart-by-ear", phone, "chart", byEar},
                          {"panel-about", phone, "about"},
                          {"first-start", phone, "", firstStart},
                          {"too-quiet", phone, "", tooQuiet},
                          {"trouble", phone, "", trouble},
                          {"volume", phone, "", lowVolume},
                          {"trouble-lying", "844x390", "", trouble},
                          {"window-1280x720", "1280x720", "", lowVolume}};
  all.insert(all.end(), std::begin(more), std::end(more));
  return all;
}

bool draw(const Picture& picture, FileBundle& bundle, const std::string& folder) {
  Options options;
  options.device = deviceNamed(picture.device);
  if (!options.device) {
    const auto sides = QString::fromStdString(picture.device).split('x');
    options.size = QSize(sides[0].toInt(), sides[1].toInt());
    options.device = desktopDevice();
    options.device->safeTop = options.device->safeBottom = 0;
  }
  options.panel = picture.panel;
  options.screenshot = fmt::format("{}/{}.png", folder, picture.name);
  Stage stage(bundle, options);
  picture.act(stage);
  QCoreApplication::processEvents();
  const auto problem = stage.window.saveScreenshot(options.screenshot);
  std::fprintf(problem ? stderr : stdout, "%s\n", problem.value_or(picture.name).c_str());
  return !problem;
}

int run(char** arguments, int count) {
  const std::vector<std::string> wanted(arguments + 4, arguments + count);
  std::vector<Picture> pictures = allPictures();
  std::vector<std::string> names;
  for (const Picture& picture : pictures) names.push_back(picture.name);
  const auto holds = [](const std::vector<std::string>& all, const std::string& name) {
    return std::find(all.begin(), all.end(), name) != all.end();
  };
  for (const std::string& name : wanted) {
    if (holds(names, name)) continue;
    const std::string all = fmt::format("{}", fmt::join(names, " "));
    std::fprintf(stderr, "screenshots: there is no picture %s, only %s\n", name.c_str(),
                 all.c_str());
    return EXIT_FAILURE;
  }
  StreamLog log(stderr);
  Options options;
  options.screenshot = "later";  // nothing goes to a display
  speak(arguments[3]);
  const Gui gui(arguments, options, log);
  FileBundle bundle({arguments[1], arguments[3], ENDPIN_VERSION}, log);
  bool good = true;
  for (const Picture& picture : pictures) {
    if (wanted.empty() || holds(wanted, picture.name))
      good = draw(picture, bundle, arguments[2]) && good;
  }
  return good ? EXIT_SUCCESS : EXIT_FAILURE;
}

}  // namespace
}  // namespace endpin

int main(int argc, char** argv) {
  if (argc < 4) {
    std::fputs("usage: endpin-draw-screens RESOURCES FOLDER LANGUAGE [PICTURE...]\n", stderr);
    return 2;
  }
  return endpin::run(argv, argc);
}
