// A layout in its window, over fakes, used with the mouse and the keyboard as a user would.
// Thread: main.
#pragma once

#include <gtest/gtest.h>

#include <QQuickItem>
#include <QTest>
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
inline QQuickItem& itemIn(QQuickItem& root, const QString& wanted) {
  QQuickItem* found = findItem(root, wanted);
  if (!found) throw std::runtime_error("nothing visible is called " + wanted.toStdString());
  return *found;
}

struct OnFakes {
  fakes::FakePlatform fake;
  fakes::FakeLog faults;
  Application application{fake.platform, false};
  ViewController& controller = application.controller();
};

class LayoutFixture : protected OnFakes, public ::testing::TestWithParam<DeviceModel> {
 protected:
  LayoutFixture() {
    fake.device.height = model.height;
    fake.device.idiom = static_cast<int>(model.idiom);
    window.setReducedMotion(true);
    window.installLayout(model.layout);
    settle();
  }

  static void settle() { QTest::qWait(5); }

  QQuickItem& item(const QString& wanted) { return itemIn(*window.root(), wanted); }
  // Presses an item, by default its middle; across and down from 0 to 1. A panel that scrolls shows
  // it first.
  void click(const QString& wanted, double across = 0.5, double down = 0.5) {
    QQuickItem& target = item(wanted);
    target.forceActiveFocus();
    settle();
    const QPointF point = target.mapToScene({target.width() * across, target.height() * down});
    ASSERT_TRUE(QRectF({0, 0}, window.window().size()).contains(point)) << wanted.toStdString();
    QTest::mouseClick(&window.window(), Qt::LeftButton, {}, point.toPoint());
    settle();
  }
  void closePanel() {
    QTest::keyClick(&window.window(), Qt::Key_Escape);
    settle();
    EXPECT_EQ(window.root()->property("openPanel"), "");
  }

  const DeviceModel model = GetParam();
  const double height = model.height;
  const bool tablet = model.idiom == InterfaceIdiom::Tablet;
  LayoutWindow window{{.model = model}, controller, faults};
};

}  // namespace endpin
