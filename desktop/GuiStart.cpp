#include "desktop/GuiStart.h"

#include <malloc.h>

#include <QIcon>
#include <QInputDevice>
#include <QLocale>
#include <QOpenGLContext>
#include <QQuickWindow>
#include <QScreen>
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <optional>

#include "adapters/posix/MutedStandardError.h"

namespace endpin {
namespace {

// The toolkit reports through a plain function; this is the one place that it can find its way to
// our log from.
Log* messageLog = nullptr;

void logMessage(QtMsgType, const QMessageLogContext&, const QString& message) {
  if (messageLog) messageLog->line(message.toStdString());
}

// While the toolkit looks for a display: what its libraries print by themselves is held back.
std::optional<MutedStandardError> muted;

// The toolkit ends the process when it finds no display. It says so at some length, and fatally
// only at the end.
void reportMissingDisplay(QtMsgType type, const QMessageLogContext&, const QString&) {
  if (type != QtFatalMsg) return;
  muted.reset();
  std::fputs(
      "endpin: there is no display to show the screen on (DISPLAY and WAYLAND_DISPLAY name one)\n",
      stderr);
  std::_Exit(EXIT_FAILURE);
}

// Without a graphics driver that works, the screen is drawn by the processor. The toolkit would
// end the process instead.
void chooseRenderer() {
  if (!qEnvironmentVariableIsEmpty("QT_QUICK_BACKEND")) return;
  const bool hasWindows = QGuiApplication::platformName() != QLatin1String("offscreen");
  if (hasWindows && QOpenGLContext().create()) return;
  QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
}

std::optional<DeviceModel> deviceOfScreen() {
  const QSize size = QGuiApplication::primaryScreen()->size();
  const auto inputs = QInputDevice::devices();
  const bool touch = std::any_of(inputs.begin(), inputs.end(), [](const QInputDevice* input) {
    return input->type() == QInputDevice::DeviceType::TouchScreen;
  });
  return deviceForScreen(size.width(), size.height(), touch);
}

Presentation choosePresentation(const Options& options) {
  if (!options.screenshot.empty()) return Presentation::Picture;
  if (options.device) return Presentation::Device;
  return deviceOfScreen() ? Presentation::Screen : Presentation::Window;
}

// For titles and spoken names that only the layouts know.
QVariantMap defaultTexts(const FileBundle& bundle) {
  QVariantMap texts;
  for (const std::string& key : bundle.defaultKeys()) {
    texts.insert(QString::fromStdString(key),
                 QString::fromStdString(bundle.localizedString(key, "", "")));
  }
  return texts;
}

// Pictures come and go by megabytes. Left to itself the allocator learns from the first that goes
// to keep their memory, and fills it with small things that stay.
void giveMemoryBack() {
#ifdef __GLIBC__
  mallopt(M_MMAP_THRESHOLD, 128 * 1024);
#endif
}

void setUpToolkit(const Options& options) {
  giveMemoryBack();
  if (!options.screenshot.empty() && qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
  }
  // Layouts are compiled anew at each start, some 20 ms: a cache in the user's folder would be
  // slower at the first start, and could be that of another version at the next.
  qputenv("QML_DISABLE_DISK_CACHE", "1");
  // Nothing is typed here. On Wayland the usual input method takes a seat for granted and crashes.
  qputenv("QT_IM_MODULE", "none");
  QCoreApplication::setApplicationName(QStringLiteral("endpin"));
  QGuiApplication::setApplicationDisplayName(QStringLiteral("Endpin"));
  QGuiApplication::setDesktopFileName(QStringLiteral("io.endpin.Endpin"));
}

}  // namespace

void speak(const std::string& language) {
  const QLocale locale(QString::fromStdString(language));
  QLocale::setDefault(locale);
  // The toolkit leaves it to the font library to choose among fonts that draw the same character in
  // another way, and that library goes by the environment.
  qputenv("FC_LANG", locale.name().toLatin1());
}

Gui::Gui(char** arguments, const Options& options, Log& log) {
  static int argumentCount = 1;  // the toolkit keeps a reference; our options are not its own
  setUpToolkit(options);
  messageLog = &log;
  formerHandler_ = qInstallMessageHandler(reportMissingDisplay);
  muted.emplace();
  application_ = std::make_unique<QGuiApplication>(argumentCount, arguments);
  muted.reset();
  qInstallMessageHandler(logMessage);
  chooseRenderer();
  // For desktops that do not find it by the name of the desktop file.
  QGuiApplication::setWindowIcon(QIcon(QStringLiteral(":/endpin/pictures/endpin48@2x.png")));
}

Gui::~Gui() {
  application_.reset();
  qInstallMessageHandler(formerHandler_);  // the toolkit talks on, the log is about to go
  messageLog = nullptr;
}

DeviceModel chooseDevice(const Options& options) {
  return options.device.value_or(deviceOfScreen().value_or(desktopDevice()));
}

LayoutWindow::Setup setUpWindow(const Options& options, DeviceModel model, const FileBundle& bundle,
                                SettingsStore& settings) {
  if (!options.device && !deviceOfScreen()) model.safeTop = model.safeBottom = 0;
  return {.model = model,
          .presentation = choosePresentation(options),
          .size = options.size,
          .settings = &settings,
          .texts = defaultTexts(bundle),
          .version = QString::fromStdString(bundle.infoValue("CFBundleVersion").value_or("")),
          .openPanel = QString::fromStdString(options.panel)};
}

void logFirstFrame(LayoutWindow& window, Log& log) {
  QObject::connect(
      &window.window(), &QQuickWindow::frameSwapped, &window.window(),
      [&log] { log.line("First frame"); },
      static_cast<Qt::ConnectionType>(Qt::QueuedConnection | Qt::SingleShotConnection));
}

void planScreenshot(const Options& options, LayoutWindow& window, RunLoop& runLoop) {
  if (options.screenshot.empty()) return;
  runLoop.performAfterDelay(options.after, [&window, path = options.screenshot] {
    const auto problem = window.saveScreenshot(path);
    if (problem) std::fprintf(stderr, "endpin: %s\n", problem->c_str());
    QCoreApplication::exit(problem ? EXIT_FAILURE : EXIT_SUCCESS);
  });
}

}  // namespace endpin
