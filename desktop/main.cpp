// endpin: the tuner with its screen.
#include <cstdio>

#include "adapters/bundle/FileBundle.h"
#include "adapters/cli11/ProgramError.h"
#include "adapters/log/Logs.h"
#include "adapters/offline/MemoryStore.h"
#include "adapters/posix/SystemNetwork.h"
#include "adapters/qt/QtDevice.h"
#include "adapters/qt/QtRunLoop.h"
#include "adapters/qt/QuitSignals.h"
#include "adapters/sqlite/SqliteStore.h"
#include "app/Application.h"
#include "desktop/AppLifecycle.h"
#include "desktop/GuiStart.h"
#include "desktop/Language.h"
#include "desktop/Options.h"
#include "desktop/Sound.h"
#include "ports/Platform.h"

namespace endpin {
namespace {

std::unique_ptr<SettingsStore> openSettings(const Options& options, Log& log) {
  if (options.store.empty()) return std::make_unique<MemoryStore>();
  return std::make_unique<SqliteStore>(options.store, log);
}

int run(const Options& options, char** arguments) {
  StreamLog problems(stderr);
  NullLog nowhere;
  Log& log = options.verbose ? static_cast<Log&>(problems) : nowhere;

  const std::string resources = applicationResourcePath();
  const std::string language = chooseLanguage(options.language, resources);
  FileBundle bundle({resources, language, ENDPIN_VERSION}, log);
  Sound sound(options, log);

  speak(bundle.language());
  const Gui gui(arguments, options, log);
  const QuitSignals quitSignals;
  QtRunLoop runLoop;
  sound.follow(runLoop);
  const auto settings = openSettings(options, problems);
  QtDevice device(chooseDevice(options), log);
  Platform platform{.audioInput = sound.input(),
                    .audioSession = sound.session(),
                    .audioPlayers = sound.players(),
                    .audioOutput = sound.output(),
                    .runLoop = runLoop,
                    .settings = *settings,
                    .device = device,
                    .bundle = bundle,
                    .log = log};

  Application application(platform);
  LayoutWindow window(setUpWindow(options, device.model(), bundle, *settings),
                      application.controller(), problems);
  SystemClock clock;
  SystemNetwork network(options.network, "Endpin/" ENDPIN_VERSION);
  const AppLifecycle life(application, platform, window,
                          {.clock = clock, .reachability = network, .probes = network});
  logFirstFrame(window, log);
  planScreenshot(options, window, runLoop);
  return QGuiApplication::exec();
}

}  // namespace
}  // namespace endpin

int main(int argc, char** argv) {
  using namespace endpin;
  holdQuitSignals();
  try {
    const auto asked = parseOptions(argc, argv);
    if (const auto* options = std::get_if<Options>(&asked)) return run(*options, argv);
    std::fputs(std::get<PrintText>(asked).text.c_str(), stdout);
    return 0;
  } catch (const ProgramError& error) {
    std::fprintf(stderr, "endpin: %s\n", error.what());
    return error.exitCode();
  }
}
