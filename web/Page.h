// The whole application in a page: the platform that the browser is, the application over it, and
// the bridge to its screen. One at a time. Thread: main.
#pragma once

#include "adapters/offline/SilentOutput.h"
#include "adapters/web/WebMicrophone.h"
#include "adapters/web/WebOutput.h"
#include "adapters/web/WebRunLoop.h"
#include "adapters/web/WebServices.h"
#include "adapters/web/WebStore.h"
#include "app/Application.h"
#include "app/DeviceChoice.h"
#include "web/ScreenBridge.h"

namespace endpin {

class Page {
 public:
  // On the device that a screen of this size (points) is most like; `now` in seconds.
  Page(double width, double height, bool touch, double now)
      : device_(factsFor(width, height, touch)), runLoop_(now) {}

  // The main screen appears.
  void launch() { application_.launch(); }

  // Tells the page what has changed, after each call from there.
  void settle() {
    screen_.push();
    output_.follow(application_.controller().tuningFork().synthesizer());
  }

  WebMicrophone& microphone() { return microphone_; }
  WebRunLoop& runLoop() { return runLoop_; }
  ScreenBridge& screen() { return screen_; }

 private:
  // A phone hears the low strings too softly for anything but fine hearing.
  static constexpr bool kFineHearing = true;

  static FixedDevice::Facts factsFor(double width, double height, bool touch) {
    const auto model = deviceForScreen(width, height, touch).value_or(desktopDevice());
    return {.idiom = static_cast<int>(model.idiom), .screenHeight = model.height};
  }

  WebLog log_;
  WebBundle bundle_;
  WebStore settings_{log_};
  WebDevice device_;
  WebRunLoop runLoop_;
  WebMicrophone microphone_;
  OfflineSession session_;  // a browser tells no volume: it counts as full
  WebPlayers players_;
  WebOutput output_;
  Platform platform_{.audioInput = microphone_,
                     .audioSession = session_,
                     .audioPlayers = players_,
                     .audioOutput = output_,
                     .runLoop = runLoop_,
                     .settings = settings_,
                     .device = device_,
                     .bundle = bundle_,
                     .log = log_,
                     .microphones = &microphone_};
  Application application_{platform_, ViewController::kDemoModeEnabled, kFineHearing};
  ScreenBridge screen_{application_.controller()};
};

}  // namespace endpin
