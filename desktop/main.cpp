// endpin: the tuner with its screen.
#include <cstdio>
#include <memory>
#include <optional>

#include "adapters/bundle/FileBundle.h"
#include "adapters/cli11/ProgramError.h"
#include "adapters/cubeb/CubebMicrophone.h"
#include "adapters/cubeb/CubebOutput.h"
#include "adapters/log/Logs.h"
#include "adapters/offline/MemoryStore.h"
#include "adapters/posix/SystemNetwork.h"
#include "adapters/pulse/DesktopMicrophones.h"
#include "adapters/qt/QtDevice.h"
#include "adapters/qt/QtRunLoop.h"
#include "adapters/qt/QuitSignals.h"
#include "adapters/sqlite/SqliteStore.h"
#include "app/Application.h"
#include "desktop/AppLifecycle.h"
#include "desktop/FileInput.h"
#include "desktop/GuiStart.h"
#include "desktop/Options.h"
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
  std::optional<FileInput> file;
  if (!options.input.empty()) file.emplace(options.input);
  CubebMicrophone microphone(options.inputDevice, log);
  const SoundServer soundServer;
  DesktopMicrophones microphones(soundServer, microphone, options.inputDevice);
  DesktopAudioSession session(soundServer);
  CubebPlayers players;
  CubebOutput output;

  speak(bundle.language());
  const Gui gui(arguments, options, log);
  const QuitSignals quitSignals;
  QtRunLoop runLoop;
  if (file) file->follow(runLoop);
  const auto settings = openSettings(options, problems);
  QtDevice device(chooseDevice(options), log);
  Platform platform{.audioInput = file ? static_cast<AudioInput&>(*file) : microphone,
                    .audioSession = session,
                    .audioPlayers = players,
                    .audioOutput = output,
                    .runLoop = runLoop,
                    .settings = *settings,
                    .device = device,
                    .bundle = bundle,
                    .log = log,
                    .microphones = file ? nullptr : &microphones};

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
