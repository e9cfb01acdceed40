#include "app/Application.h"

#include "audio/LumoListener.h"

namespace endpin {

Application::Application(Platform& platform, bool demoModeEnabled, bool fineHearingByDefault)
    : platform_(platform), controller_(platform, demoModeEnabled, fineHearingByDefault) {
  LumoListener::usePorts({platform.audioInput, platform.audioSession, platform.log});
}

Application::~Application() {
  LumoListener::releaseSharedListener();
}

void Application::launch(Screen& screen) {
  delegate_.emplace(AppDelegate::Ports{platform_.device, screen, platform_.log});
  delegate_->applicationDidFinishLaunching();
}

void Application::launch() {
  controller_.viewDidLoad();
  controller_.viewWillAppear(false);
}

}  // namespace endpin
