#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickItem>

#include "adapters/qt/LayoutBinder.h"
#include "audio/LumoListener.h"
#include "tests/fakes/FakePlatform.h"

namespace endpin {
namespace {

// A layout of one element of each kind, some of them made by a repeater.
constexpr const char* kLayout = R"(
  import QtQuick
  Item {
    component Seen: Item {
      property bool hidden: false
      property real alpha: 1
      property bool blinking: false
    }
    component Control: Seen { property string action; signal activated() }
    component TextItem: Seen { property string text: "as drawn"; property int changes: 0
                               onTextChanged: changes += 1 }
    Repeater { model: ["freq_label", "turnUpTheVolumeLabel"]
               TextItem { objectName: modelData } }
    Item { Seen { objectName: "LEDDisplay"; property string image: "yellow64.png" } }
    Control { objectName: "setA415btn"; action: "setA415"; property string backgroundImage }
    Control { objectName: "soundNotificationSwitch"; action: "soundNotificationAction"
              property bool on: true }
    Control { objectName: "micSensitivitySlider"; action: "micSensitivity"
              property real value: 5 }
    Control { objectName: "setFrequencyValueStepper"; action: "setFrequencyValue"
              property real value: 440 }
    EXTRA
  })";

struct BinderTest : ::testing::Test {
  ~BinderTest() override { LumoListener::releaseSharedListener(); }

  void load(const QString& extra = "") {
    QQmlComponent component(&engine);
    component.setData(QString(kLayout).replace("EXTRA", extra).toUtf8(), QUrl("test.qml"));
    root.reset(qobject_cast<QQuickItem*>(component.create()));
    ASSERT_TRUE(root) << component.errorString().toStdString();
    binder = std::make_unique<LayoutBinder>(*root, controller, log);
  }
  static QQuickItem* find(QQuickItem& item, const QString& name) {
    if (item.objectName() == name) return &item;
    for (QQuickItem* child : item.childItems()) {
      if (QQuickItem* found = find(*child, name)) return found;
    }
    return nullptr;
  }
  QQuickItem& item(const char* name) { return *find(*root, name); }
  void use(const char* name, const char* property, const QVariant& value) {
    item(name).setProperty(property, value);
    QMetaObject::invokeMethod(&item(name), "activated");
  }

  fakes::FakePlatform fake;
  fakes::FakeLog log;
  ViewController controller{fake.platform};
  QQmlEngine engine;
  std::unique_ptr<QQuickItem> root;
  std::unique_ptr<LayoutBinder> binder;
};

TEST_F(BinderTest, ViewsStartWithWhatTheLayoutShows) {
  load();
  EXPECT_EQ(log.lines, std::vector<std::string>{});
  EXPECT_EQ(controller.freq_label->text(), "as drawn");
  EXPECT_EQ(controller.LEDDisplay->image(), "yellow64.png");
  EXPECT_TRUE(controller.soundNotificationSwitch->isOn());
  EXPECT_EQ(controller.micSensitivitySlider->value(), 5);
  EXPECT_EQ(controller.setFrequencyValueStepper->value(), 440);
  EXPECT_FALSE(controller.ring1.connected());
}

TEST_F(BinderTest, ChangesReachTheItemsOnceATurn) {
  load();
  controller.freq_label->setText("146.9Hz");
  controller.freq_label->setText("146.8Hz");
  EXPECT_EQ(item("freq_label").property("text"), "as drawn");
  QCoreApplication::processEvents();
  EXPECT_EQ(item("freq_label").property("text"), "146.8Hz");
  EXPECT_EQ(item("freq_label").property("changes"), 1);

  controller.freq_label->setText("");
  controller.freq_label->setText("146.8Hz");
  QCoreApplication::processEvents();
  EXPECT_EQ(item("freq_label").property("changes"), 1);

  fake.session.volume = 0.49F;
  controller.checkVolume();
  controller.LEDDisplay->setImage("green64.png");
  controller.setA415btn->setEnabled(false);
  binder->flush();
  EXPECT_EQ(item("turnUpTheVolumeLabel").property("blinking"), true);
  EXPECT_EQ(item("turnUpTheVolumeLabel").property("hidden"), false);
  EXPECT_EQ(item("LEDDisplay").property("image"), "green64.png");
  EXPECT_EQ(item("setA415btn").property("enabled"), false);
  fake.session.volume = 0.5F;
  controller.checkVolume();
  binder->flush();
  EXPECT_EQ(item("turnUpTheVolumeLabel").property("hidden"), true);
}

TEST_F(BinderTest, ActionsGetWhatTheUserDid) {
  load();
  use("micSensitivitySlider", "value", 4.7);
  EXPECT_EQ(controller.sensitivity().bottomLimit, 0.003);
  EXPECT_EQ(fake.settings.integerForKey("savedSliderValue"), 5);
  EXPECT_EQ(item("micSensitivitySlider").property("value"), 5) << "the snapped value comes back";

  use("soundNotificationSwitch", "on", false);
  EXPECT_EQ(fake.settings.stringForKey("soundNotificationEnabled"), "0");
  use("setFrequencyValueStepper", "value", 443);
  EXPECT_EQ(fake.settings.integerForKey("savedA4Calibration"), 443);
  use("setA415btn", "action", "setA415");
  EXPECT_EQ(fake.settings.integerForKey("a4InHzSavedValue"), 415);
  EXPECT_EQ(item("setA415btn").property("backgroundImage"), "selectedFreqBg.png");
  EXPECT_EQ(log.lines, std::vector<std::string>{});
}

TEST_F(BinderTest, FaultsOfALayoutAreNamed) {
  const std::pair<const char*, const char*> rows[] = {
      {"Seen { objectName: \"ring1\" }", "\"ring1\" has no image"},
      {"TextItem { objectName: \"freq_label\" }", "\"freq_label\" is there twice"},
      {"Control { objectName: \"x\"; action: \"setA999\" }",
       "\"x\" has an unknown action, setA999"},
      {"Item { objectName: \"x\"; property string action: \"playA3\" }",
       "\"x\" has an action and no signal activated()"},
  };
  for (const auto& [extra, complaint] : rows) {
    binder.reset();
    log.lines.clear();
    load(extra);
    ASSERT_EQ(log.lines.size(), 1U) << extra;
    EXPECT_NE(log.lines[0].find(complaint), std::string::npos) << log.lines[0];
  }
  binder.reset();
  log.lines.clear();
  load("Control { objectName: \"x\"; action: \"toggleFreqChart\" }");
  use("x", "action", "toggleFreqChart");
  ASSERT_EQ(log.lines.size(), 1U);
  EXPECT_NE(log.lines[0].find("no control for the action toggleFreqChart"), std::string::npos);
}

TEST_F(BinderTest, NothingIsLeftBehind) {
  load();
  controller.freq_label->setText("pending");
  binder.reset();
  EXPECT_FALSE(controller.freq_label.connected());
  controller.freq_label->setText("nowhere");
  QCoreApplication::processEvents();
  EXPECT_EQ(item("freq_label").property("text"), "as drawn");
}

}  // namespace
}  // namespace endpin
