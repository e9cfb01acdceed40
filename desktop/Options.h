// What the user asked for on the command line. Thread: main.
#pragma once

#include <QSize>
#include <filesystem>
#include <optional>
#include <string>
#include <variant>

#include "adapters/cli11/ProgramError.h"
#include "app/DeviceChoice.h"

namespace endpin {

struct Options {
  std::optional<DeviceModel> device;  // to simulate; none: what the screen suggests
  std::string input;                  // sound file in place of the microphone; empty: none
  std::string inputDevice;            // name or id of the microphone; empty: the default one
  std::filesystem::path store;        // the settings; empty: in memory only
  std::string language;               // tag; empty: the system's
  std::string panel;                  // to open at start; empty: none
  std::string screenshot;             // file to write; empty: none
  double after = 1;                   // seconds until then
  QSize size;                         // of the screenshot in points; empty: the device's
  bool network = true;                // the one request a run may be sent
  bool verbose = false;               // the log goes to standard error
};

// Text for help, version and the list of devices. Throws ProgramError for what makes no sense.
// Before the application object: it changes the locale that numbers are read by.
[[nodiscard]] std::variant<Options, PrintText> parseOptions(int argc, const char* const* argv);

// The tag of the language to use: the wanted one, or the system's when none is wanted. A wanted
// language of which there are no texts under `resourcePath` throws ProgramError; a region that we
// do not know is fine.
[[nodiscard]] std::string chooseLanguage(const std::string& wanted,
                                         const std::string& resourcePath);

}  // namespace endpin
