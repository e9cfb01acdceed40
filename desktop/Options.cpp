#include "desktop/Options.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <QStringList>
#include <algorithm>
#include <array>
#include <cmath>
#include <filesystem>
#include <vector>

#include "adapters/bundle/FileBundle.h"
#include "adapters/cli11/ParseArguments.h"
#include "adapters/sqlite/SqliteStore.h"

namespace endpin {
namespace {

constexpr std::array<const char*, 4> kPanels = {"settings", "fork", "chart", "about"};

struct Arguments {
  Options options;
  std::string device;
  std::string store;
  std::string size;
  bool listDevices = false;
};

void addOptions(CLI::App& app, Arguments& into) {
  Options& options = into.options;
  app.add_option("--device", into.device, "Simulate a device, such as phone:667");
  app.add_flag("--list-devices", into.listDevices, "List the devices and end");
  auto* input = app.add_option("--input", options.input,
                               "Listen to a sound file, in real time, instead of the microphone");
  app.add_option("--input-device", options.inputDevice, "Microphone to use, by name or id")
      ->excludes(input);
  app.add_option("--store", into.store, "File to keep the settings in")->type_name("PATH");
  app.add_option("--language", options.language, "Language to use, such as de or pt-BR");
  app.add_option("--panel", options.panel, "Panel to open: settings, fork, chart or about");
  auto* screenshot = app.add_option("--screenshot", options.screenshot,
                                    "Save the screen as a PNG, two pixels a point, and end");
  app.add_option("--after", options.after, "Seconds until the screenshot (1)")->needs(screenshot);
  app.add_flag_callback(
      "--no-network", [&options] { options.network = false; }, "Send nothing over the network");
  app.add_option("--size", into.size, "Size of the screen in points, such as 1280x720")
      ->needs(screenshot);
  app.add_flag("--verbose", options.verbose, "Write the log to standard error");
}

std::string deviceTable() {
  std::string table;
  auto models = kDeviceTable;
  std::stable_sort(models.begin(), models.end(), [](const auto& a, const auto& b) {
    return std::pair(a.idiom, a.height) < std::pair(b.idiom, b.height);
  });
  for (const DeviceModel& model : models) {
    table += fmt::format("{:<12} {:>4.0f} x {:.0f}\n", nameOf(model), model.width, model.height);
  }
  return table;
}

// "WIDTHxHEIGHT"; empty for anything else, and for what no screen measures.
QSize sizeNamed(const std::string& name) {
  constexpr int kLeast = 320;
  constexpr int kMost = 8192;
  const auto parts = QString::fromStdString(name).split('x');
  const QSize size = parts.size() == 2 ? QSize(parts[0].toInt(), parts[1].toInt()) : QSize();
  const QSize inRange = size.expandedTo({kLeast, kLeast}).boundedTo({kMost, kMost});
  return size == inRange ? size : QSize();
}

Options checked(Arguments arguments) {
  Options& options = arguments.options;
  if (!arguments.device.empty()) {
    options.device = deviceNamed(arguments.device);
    if (!options.device) {
      rejectArguments(
          fmt::format("there is no device \"{}\" (--list-devices names them)", arguments.device));
    }
  }
  if (!options.panel.empty() &&
      std::find(kPanels.begin(), kPanels.end(), options.panel) == kPanels.end()) {
    rejectArguments(fmt::format("there is no panel \"{}\": --panel takes {}", options.panel,
                                fmt::join(kPanels, ", ")));
  }
  if (!arguments.size.empty()) {
    options.size = sizeNamed(arguments.size);
    if (options.size.isEmpty()) {
      rejectArguments(
          fmt::format("--size takes WIDTHxHEIGHT, each 320 to 8192, not \"{}\"", arguments.size));
    }
  }
  constexpr double kLongest = 86400;
  if (!(options.after >= 0 && options.after <= kLongest)) {
    rejectArguments(fmt::format("--after takes seconds from 0 to {:.0f}", kLongest));
  }
  options.store = arguments.store;
  // A picture leaves nothing behind unless it is told where.
  if (options.store.empty() && options.screenshot.empty()) options.store = defaultStorePath();
  return options;
}

std::vector<std::string> languagesIn(const std::string& resourcePath) {
  std::vector<std::string> tags;
  std::error_code missing;
  for (const auto& file :
       std::filesystem::directory_iterator(resourcePath + "/texts/Localizable", missing)) {
    if (file.path().extension() == ".json") tags.push_back(file.path().stem());
  }
  std::sort(tags.begin(), tags.end());
  return tags;
}

}  // namespace

std::variant<Options, PrintText> parseOptions(int argc, const char* const* argv) {
  Arguments arguments;
  CLI::App app("Endpin, a tuner for the cello", "endpin");
  app.set_version_flag("--version", "endpin " ENDPIN_VERSION);
  addOptions(app, arguments);
  if (const auto text = parseArguments(app, argc, argv)) return *text;
  rejectEmptyTexts(app);
  if (arguments.listDevices) return PrintText{deviceTable()};
  return checked(std::move(arguments));
}

std::string chooseLanguage(const std::string& wanted, const std::string& resourcePath) {
  if (wanted.empty()) return environmentLanguage(resourcePath);
  const std::string tag = languageTag(wanted);
  if (hasTexts(resourcePath, tag) && wanted != "C" && wanted != "POSIX") return tag;
  throw ProgramError(kExitUsage,
                     fmt::format("there are no texts in the language \"{}\", only in {}", wanted,
                                 fmt::join(languagesIn(resourcePath), ", ")));
}

}  // namespace endpin
