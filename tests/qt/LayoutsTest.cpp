// Every layout, used with the mouse as it lies in its window.
#include <gtest/gtest.h>

#include <QQmlComponent>
#include <QQuickItem>
#include <QSignalSpy>
#include <QTest>
#include <set>

#include "adapters/qt/LayoutWindow.h"
#include "audio/LumoListener.h"
#include "tests/fakes/FakePlatform.h"
#include "tests/qt/FindItem.h"

namespace endpin {
namespace {

struct Row {
  const char* device;
  const char* layout;
  const char* strings;  // outlet of the string pictures
  const char* lamp;
};

constexpr Row kRows[] = {
    {"phone:480", "Main_iPhone4s", "tunedString", "LEDDisplay"},
    {"phone:568", "Main_iPhone", "tunedString5", "LEDDisplay"},
    {"phone:667", "Main_iPhone6", "tunedString5", "LEDDisplay128"},
    {"phone:736", "Main_iPhone6Plus", "tunedString5", "LEDDisplay128"},
    {"phone:812", "Main_iPhoneX", "tunedString5", "LEDDisplay128"},
    {"phone:852", "Main_iPhone12Pro", "tunedString5", "LEDDisplay128"},
    {"phone:896", "Main_iPhoneXSMax", "tunedString5", "LEDDisplay128"},
    {"phone:956", "Main_iPhone12ProMax", "tunedString5", "LEDDisplay128"},
    {"tablet:1024", "Main_iPad", "tunedStringiPad", "LEDDisplay128"},
    {"tablet:1180", "Main_iPad_Pro_10_5", "tunedStringiPad", "LEDDisplay128"},
    {"tablet:1133", "Main_iPad_Mini6", "tunedStringiPad", "LEDDisplay128"},
    {"tablet:1210", "Main_iPad_Pro_11", "tunedStringiPad", "LEDDisplay128"},
    {"tablet:1366", "Main_iPad_Pro", "tunedStringiPad", "LEDDisplay128"},
};

class LayoutsTest : public ::testing::TestWithParam<Row> {
 protected:
  LayoutsTest() {
    fake.device.height = model.height;
    fake.device.idiom = static_cast<int>(model.idiom);
    window.setReducedMotion(true);
    window.installLayout(GetParam().layout);
    settle();
  }
  ~LayoutsTest() override { LumoListener::releaseSharedListener(); }

  static void settle() { QTest::qWait(5); }

  QQuickItem& item(const QString& wanted) {
    QQuickItem* found = findItem(*window.root(), wanted);
    if (!found) throw std::runtime_error("nothing visible is called " + wanted.toStdString());
    return *found;
  }
  // Presses an item, by default its middle; across and down from 0 to 1.
  void click(const QString& wanted, double across = 0.5, double down = 0.5) {
    QQuickItem& target = item(wanted);
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

  const DeviceModel model = *deviceNamed(GetParam().device);
  fakes::FakePlatform fake;
  fakes::FakeLog faults;
  ViewController controller{fake.platform, false};
  LayoutWindow window{{.model = model}, controller, faults};
};

TEST_P(LayoutsTest, BindsTheOutletsOfItsDeviceAndFollowsThemOnceATurn) {
  EXPECT_EQ(faults.lines, std::vector<std::string>{});
  std::set<std::string_view> absent = {"tunedString", "tunedString5",  "tunedStringiPad",
                                       "LEDDisplay",  "LEDDisplay128", "establecerIdioma"};
  absent.erase(GetParam().strings);
  absent.erase(GetParam().lamp);
  for (const OutletName& row : outletNames()) {
    const bool connected =
        std::visit([this](auto outlet) { return (controller.*outlet).connected(); }, row.outlet);
    EXPECT_EQ(connected, !absent.contains(row.name)) << row.name;
  }
  EXPECT_EQ(window.root()->width() / window.root()->height(), model.width / model.height);
  EXPECT_TRUE(controller.freqChartSwitch->isOn() && controller.soundNotificationSwitch->isOn());
  EXPECT_EQ(controller.micSensitivitySlider->value(), 5);
  EXPECT_EQ(controller.setFrequencyValueStepper->value(), 440);

  QQuickItem& lamp = item(GetParam().lamp);
  QQuickItem& frequency = item("freq_label");
  EXPECT_EQ(controller.LEDDisplay128->image() + controller.LEDDisplay->image(),
            lamp.property("image").toString().toStdString())
      << "as drawn";
  QSignalSpy changes(&frequency, SIGNAL(textChanged()));
  for (const char* text : {"146.9Hz", "", "146.8Hz"}) controller.freq_label->setText(text);
  EXPECT_EQ(frequency.property("text"), "");
  settle();
  EXPECT_EQ(frequency.property("text"), "146.8Hz");
  EXPECT_EQ(changes.count(), 1);

  fake.session.volume = 0.49F;
  controller.checkVolume();
  controller.LEDDisplay->setImage("green64.png");
  controller.LEDDisplay128->setImage("green64.png");
  settle();
  EXPECT_EQ(lamp.property("image"), "green64.png");
  QQuickItem& warning = item("turnUpTheVolumeLabel");
  EXPECT_EQ(warning.property("blinking"), true);
  fake.session.volume = 0.5F;
  controller.checkVolume();
  settle();
  EXPECT_FALSE(warning.isVisible());
}

TEST_P(LayoutsTest, SettingsReachTheController) {
  click("settings");
  for (const int a4 : {392, 415, 432, 440, 441, 442, 443, 444, 466}) {
    click(QString("setA%1btn").arg(a4));
    EXPECT_EQ(fake.settings.integerForKey("a4InHzSavedValue"), a4);
    EXPECT_EQ(item(QString("setA%1btn").arg(a4)).property("backgroundImage"), "selectedFreqBg.png");
  }
  click("setFrequencyValueStepper", 0.75);
  EXPECT_EQ(fake.settings.integerForKey("a4InHzSavedValue"), 441);
  EXPECT_EQ(item("calibrationFrequencyValue").property("text"), "441");

  QQuickItem& slider = item("micSensitivitySlider");
  click("micSensitivitySlider", (16 + 0.27 * (slider.width() - 32)) / slider.width());
  EXPECT_EQ(controller.sensitivity().bottomLimit, 0.005) << "the row of the unrounded value, 2.7";
  EXPECT_EQ(slider.property("value"), 3) << "the snapped value comes back";

  for (const std::string name : {"soundNotification", "stringSounds", "frequencyChart"}) {
    const bool before = fake.settings.boolForKey(name + "Enabled");
    const char* chart = name == "frequencyChart" ? "freqChart" : name.c_str();
    click(QString(chart) + "Switch");
    EXPECT_EQ(fake.settings.boolForKey(name + "Enabled"), !before) << name;
  }
  controller.setA415btn->setEnabled(false);
  settle();
  EXPECT_FALSE(item("setA415btn").isEnabled());
  closePanel();
}

TEST_P(LayoutsTest, TheTuningForkPlaysWhileItIsOpen) {
  click("fork");
  EXPECT_EQ(fake.settings.integerForKey("currentlyUsingTuningFork"), 1);
  const std::pair<const char*, const char*> tones[] = {
      {"a3", "220.0Hz"}, {"d3", "146.8Hz"}, {"g2", "98.0Hz"}, {"c2", "65.4Hz"}};
  for (const auto& [note, frequency] : tones) {
    click(QString(note) + "TFButton");
    EXPECT_EQ(item("tfFreqLabel").property("text"), frequency);
  }
  EXPECT_EQ(fake.output.starts, 4);
  click("stopFreqPlay");
  EXPECT_EQ(fake.output.stops, 1);
  click("a3TFButton");
  closePanel();
  EXPECT_EQ(fake.output.stops, 2);
  EXPECT_EQ(fake.settings.integerForKey("currentlyUsingTuningFork"), 0);

  for (const char* panel : {"chart", "about"}) {
    click(panel);
    EXPECT_EQ(window.root()->property("openPanel"), panel);
    closePanel();
  }
  EXPECT_EQ(faults.lines, std::vector<std::string>{});
}

INSTANTIATE_TEST_SUITE_P(Devices, LayoutsTest, ::testing::ValuesIn(kRows),
                         [](const auto& row) { return std::string(row.param.layout); });

struct LayoutTest : ::testing::Test {
  ~LayoutTest() override { LumoListener::releaseSharedListener(); }
  fakes::FakePlatform fake;
  fakes::FakeLog faults;
  ViewController controller{fake.platform, false};
};

TEST_F(LayoutTest, KeepsItsProportionsInTheMiddleAndLeavesNothingBehind) {
  LayoutWindow window({.model = desktopDevice()}, controller, faults);
  window.installLayout("Main_iPhone12Pro");
  window.window().resize(1000, 422);
  QTest::qWait(30);
  EXPECT_EQ(window.root()->scale(), 0.5);
  EXPECT_EQ(window.inWindow({0, 0}), QPointF(402, 0));
  EXPECT_EQ(window.inWindow({390, 844}), QPointF(597, 422));

  controller.freq_label->setText("pending");
  window.installLayout("Main_nothing");
  EXPECT_FALSE(window.hasLayout());
  EXPECT_EQ(faults.lines.size(), 2U);
  EXPECT_FALSE(controller.freq_label.connected());
  QTest::qWait(5);
}

TEST_F(LayoutTest, FaultsAreNamed) {
  const std::pair<const char*, const char*> rows[] = {
      {"Seen { objectName: 'ring1' }", "\"ring1\" has no image"},
      {"Named {} Named {}", "\"freq_label\" is there twice"},
      {"Control { action: 'setA999' }", "\"x\" has an unknown action, setA999"},
      {"Item { objectName: 'x'; property string action: 'playA3' }",
       "\"x\" has an action and no signal activated()"},
      {"Control { action: 'toggleFreqChart' }", "no control for the action toggleFreqChart"},
  };
  QQmlEngine engine;
  for (const auto& [items, complaint] : rows) {
    QQmlComponent component(&engine);
    component.setData(QString(R"(import QtQuick
      Item {
        component Seen: Item { property bool hidden; property real alpha; property bool blinking }
        component Named: Seen { objectName: "freq_label"; property string text }
        component Control: Item { objectName: "x"; property string action; signal activated() }
        %1
      })")
                          .arg(items)
                          .toUtf8(),
                      QUrl("test.qml"));
    const std::unique_ptr<QQuickItem> root(qobject_cast<QQuickItem*>(component.create()));
    ASSERT_TRUE(root) << component.errorString().toStdString();
    faults.lines.clear();
    const LayoutBinder binder(*root, controller, faults);
    if (faults.lines.empty()) QMetaObject::invokeMethod(root->childItems()[0], "activated");
    ASSERT_EQ(faults.lines.size(), 1U) << items;
    EXPECT_NE(faults.lines[0].find(complaint), std::string::npos) << faults.lines[0];
  }
}

}  // namespace
}  // namespace endpin
