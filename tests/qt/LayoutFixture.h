// A layout in its window, over fakes, used with the mouse and the keyboard as a user would.
// Thread: main.
#pragma once

#include <gtest/gtest.h>

#include <QQuickItem>
#include <QTest>
#include <algorithm>
#include <memory>
#include <stdexcept>

#include "adapters/qt/LayoutWindow.h"
#include "app/Application.h"
#include "tests/fakes/FakePlatform.h"

namespace endpin {

// The first visible item of that name or, without one, with that action, panel or caption.
inline QQuickItem* findItem(QQuickItem& item, const QString& wanted) {
  for (const char* property : {"objectName", "action", "panel", "modelData"}) {
    if (item.property(property) == wanted && item.isVisible()) return &item;
  }
  for (QQuickItem* child : item.childItems()) {
    if (QQuickItem* found = findItem(*child, wanted)) return found;
  }
  return nullptr;
}

struct OnFakes {
  LayoutWindow& show(LayoutWindow::Setup setup) {
    const std::string layout = setup.model.layout;
    shown.reset();
    shown = std::make_unique<LayoutWindow>(std::move(setup), controller, faults);
    shown->setReducedMotion(true);
    shown->installLayout(layout);
    settle();
    return *shown;
  }
  static void settle() { QTest::qWait(5); }

  QQuickWindow& window() { return shown->window(); }
  QQuickItem& root() { return *shown->root(); }
  bool shows(const QString& wanted) { return findItem(root(), wanted) != nullptr; }
  QQuickItem& item(const QString& wanted) {
    QQuickItem* found = findItem(root(), wanted);
    if (!found) throw std::runtime_error("nothing visible is called " + wanted.toStdString());
    return *found;
  }
  QString openPanel() { return root().property("openPanel").toString(); }
  void open(const char* panel) {
    root().setProperty("openPanel", panel);
    settle();
  }
  void press(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
    QTest::keyClick(&window(), key, modifiers);
    settle();
  }
  void closePanel() {
    press(Qt::Key_Escape);
    EXPECT_EQ(openPanel(), "");
  }
  // Presses an item, by default its middle; across and down from 0 to 1. A panel that scrolls shows
  // it first.
  void click(const QString& wanted, double across = 0.5, double down = 0.5) {
    QQuickItem& target = item(wanted);
    target.forceActiveFocus();
    settle();
    const QPointF point = target.mapToScene({target.width() * across, target.height() * down});
    ASSERT_TRUE(QRectF({0, 0}, window().size()).contains(point)) << wanted.toStdString();
    QTest::mouseClick(&window(), Qt::LeftButton, {}, point.toPoint());
    settle();
  }

  fakes::FakePlatform fake;
  fakes::FakeLog faults;
  Application application{fake.platform, false};
  ViewController& controller = application.controller();
  std::unique_ptr<LayoutWindow> shown;
};

class LayoutFixture : protected OnFakes, public ::testing::TestWithParam<DeviceModel> {
 protected:
  LayoutFixture() {
    fake.device.height = model.height;
    fake.device.idiom = static_cast<int>(model.idiom);
    show({.model = model});
  }

  const DeviceModel model = GetParam();
  const double height = model.height;
  const bool tablet = model.idiom == InterfaceIdiom::Tablet;
  const char* lamp = height < 600 ? "LEDDisplay" : "LEDDisplay128";
};

// One device for each layout and each place where it is shared.
inline auto differentDevices() {
  std::vector<DeviceModel> devices(kDeviceTable.begin(), kDeviceTable.end());
  const auto sameLayout = [](const DeviceModel& a, const DeviceModel& b) {
    return std::string_view(a.layout) == b.layout;
  };
  devices.erase(std::unique(devices.begin(), devices.end(), sameLayout), devices.end());
  return ::testing::ValuesIn(devices);
}
inline std::string nameOfRow(const ::testing::TestParamInfo<DeviceModel>& row) {
  return row.param.layout + std::to_string(static_cast<int>(row.param.height));
}

}  // namespace endpin
