// Brings the graphical side up, or says in one line why it cannot be. Thread: main.
#pragma once

#include <QGuiApplication>
#include <memory>

#include "adapters/bundle/FileBundle.h"
#include "adapters/qt/LayoutWindow.h"
#include "desktop/Options.h"
#include "ports/Log.h"
#include "ports/RunLoop.h"

namespace endpin {

// Makes the toolkit speak the language of our texts, a tag such as "zh-Hans": among other things it
// then draws their characters in the forms of that language. Before the Gui.
void speak(const std::string& language);

// The toolkit, from its start to its end. One at a time.
class Gui {
 public:
  // Without a display the process ends here, with one line and exit code 1; a screenshot needs
  // none. The toolkit's messages go to `log` as long as the object lives; `log` and `arguments`
  // live longer.
  Gui(char** arguments, const Options& options, Log& log);
  ~Gui();
  Gui(const Gui&) = delete;
  Gui& operator=(const Gui&) = delete;

 private:
  QtMessageHandler formerHandler_;
  std::unique_ptr<QGuiApplication> application_;
};

// The device to be: the simulated one, or what the screen suggests. While there is a Gui.
[[nodiscard]] DeviceModel chooseDevice(const Options& options);

// How the window is to look: as that device, of which nothing is covered on a desktop. `settings`
// outlive the window. While there is a Gui.
[[nodiscard]] LayoutWindow::Setup setUpWindow(const Options& options, DeviceModel model,
                                              const FileBundle& bundle, SettingsStore& settings);

// Says in `log` when the first frame is on the screen. Both outlive the event loop.
void logFirstFrame(LayoutWindow& window, Log& log);

// Saves the picture that was asked for when its time has come, and ends the event loop: with exit
// code 1 and a line for the user when it cannot be saved. `window` outlives the event loop.
void planScreenshot(const Options& options, LayoutWindow& window, RunLoop& runLoop);

}  // namespace endpin
