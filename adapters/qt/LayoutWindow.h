// The window of the application: shows one layout, which fills it and follows its size. Only a
// simulated device keeps its size: it is scaled as a whole, the room's colour around it. Thread:
// main, after the application object.
//
// A layout is the QML file of its name. It gets its `width` and `height` (points), `safeInsets`
// ({top, bottom}, and `lying` for the device on its side: {side, top, bottom}; points), `texts`
// (every text of the default table), `version` and `reducedMotion`; `openPanel` names the panel
// that slides over it, "" for none.
//
// Keys that the layout has no use for: Ctrl+Q and Ctrl+W close the window, F11 fills the screen,
// F11 and Escape go back.
#pragma once

#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <QString>
#include <QVariantMap>
#include <memory>
#include <optional>
#include <string>

#include "adapters/qt/LayoutBinder.h"
#include "adapters/qt/WindowMemory.h"
#include "app/DeviceChoice.h"
#include "ports/Screen.h"

namespace endpin {

enum class Presentation {
  Device,   // simulated: scaled to fit its window
  Window,   // a desktop's: of the size it had last or, at first, the device's
  Screen,   // fills the screen, which is the device
  Picture,  // two pixels a point, to be saved
};

class LayoutWindow final : public Screen {
 public:
  struct Setup {
    DeviceModel model;
    Presentation presentation = Presentation::Device;
    QSizeF size = {};                   // of a picture in points; empty: the device's
    SettingsStore* settings = nullptr;  // remember a desktop's window; outlive it
    QVariantMap texts = {};
    QString version = {};                                     // of the application, for people
    QString openPanel = {};                                   // at start
    QString folder = QStringLiteral("qrc:/endpin/layouts/");  // URL, with a slash at the end
  };

  // `controller` and `log` outlive the window.
  LayoutWindow(Setup setup, ViewController& controller, Log& log);

  // With the layout bound, the controller is told that its view has loaded and is about to appear.
  void installLayout(const std::string& name) override;
  // A desktop has no status bar of the application's; a small screen has one, which goes when the
  // window takes all of it.
  [[nodiscard]] bool asksForStatusBar() const override { return true; }
  void setNeedsStatusBarAppearanceUpdate(bool hidden) override;
  void setStatusBarHidden(bool hidden, int animation) override;

  [[nodiscard]] bool hasLayout() const { return root_ != nullptr; }
  [[nodiscard]] bool isPicture() const { return setup_.presentation == Presentation::Picture; }
  void setReducedMotion(bool reduced);

  // Writes what the window shows now, at the density that it shows it in. Says what went wrong.
  std::optional<std::string> saveScreenshot(const std::string& path);

  QQuickWindow& window() { return window_; }
  QQuickItem* root() { return root_.get(); }
  // Where a point of the layout lies in the window.
  [[nodiscard]] QPointF inWindow(QPointF layoutPoint) const;

 private:
  // The one that takes keys which nothing in it took.
  class KeyWindow final : public QQuickWindow {
   public:
    void fillScreen(bool fill);
    void keyPressEvent(QKeyEvent* event) override;

   private:
    Qt::WindowStates former_;  // before it filled the screen: not every desktop keeps it
  };

  std::unique_ptr<QQuickItem> load(const std::string& name);
  void prepare();
  void show();
  void arrange();
  [[nodiscard]] double scale() const;       // of a layout's points to the window's
  [[nodiscard]] QSizeF layoutSize() const;  // in its points

  Setup setup_;
  ViewController& controller_;
  Log& log_;
  bool reducedMotion_ = false;
  QQmlEngine engine_;
  std::unique_ptr<QQuickItem> root_;
  KeyWindow window_;  // goes before what it shows: it frees what was made for drawing it
  std::optional<WindowMemory> memory_;
  std::unique_ptr<LayoutBinder> binder_;
};

}  // namespace endpin
