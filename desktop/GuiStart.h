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

// The application object. Without a display the process ends here, with one line and exit code 1;
// a screenshot needs none. Messages of the toolkit go to `log`, which outlives the process's use
// of it. `arguments` lives as long as the object.
[[nodiscard]] std::unique_ptr<QGuiApplication> startGui(char** arguments, const Options& options,
                                                        Log& log);

// The device to be: the simulated one, or what the screen suggests. After startGui.
[[nodiscard]] DeviceModel chooseDevice(const Options& options);

// How the window is to look. After startGui.
[[nodiscard]] LayoutWindow::Setup setUpWindow(const Options& options, const DeviceModel& model,
                                              const FileBundle& bundle);

// Says in `log` when the first frame is on the screen. Both outlive the event loop.
void logFirstFrame(LayoutWindow& window, Log& log);

// Saves the picture that was asked for when its time has come, and ends the event loop: with exit
// code 1 and a line for the user when it cannot be saved. `window` outlives the event loop.
void planScreenshot(const Options& options, LayoutWindow& window, RunLoop& runLoop);

}  // namespace endpin
