// Every layout, used with the mouse as it lies in its window.
#include <gtest/gtest.h>

#include <QQmlComponent>
#include <QQuickItem>
#include <QSignalSpy>
#include <QTest>
#include <algorithm>
#include <map>
#include <set>

#include "tests/qt/LayoutFixture.h"

namespace endpin {
namespace {

class LayoutsTest : public LayoutFixture {
 protected:
  const char* strings = tablet ? "tunedStringiPad" : height == 480 ? "tunedString" : "tunedString5";
};

TEST_P(LayoutsTest, BindsTheOutletsOfItsDeviceAndFollowsThemOnceATurn) {
  EXPECT_EQ(faults.lines, std::vector<std::string>{});
  std::set<std::string_view> absent = {"tunedString", "tunedString5",  "tunedStringiPad",
                                       "LEDDisplay",  "LEDDisplay128", "establecerIdioma"};
  absent.erase(strings);
  absent.erase(lamp);
  for (const OutletRow& row : outletTable()) {
    EXPECT_EQ(row.of(controller).present(), !absent.contains(row.name)) << row.name;
  }

  QQuickItem& frequency = item("freq_label");
  EXPECT_EQ(controller.LEDDisplay128.image() + controller.LEDDisplay.image(),
            item(lamp).property("image").toString().toStdString())
      << "as drawn";
  QSignalSpy changes(&frequency, SIGNAL(textChanged()));
  for (const char* text : {"146.9Hz", "", "146.8Hz"}) controller.freq_label.setText(text);
  EXPECT_EQ(frequency.property("text"), "");
  settle();
  EXPECT_EQ(frequency.property("text"), "146.8Hz");
  EXPECT_EQ(changes.count(), 1);
  controller.setTunedStringsHidden(false);
  controller.displayTunedString(2);
  settle();
  EXPECT_TRUE(item(strings).property("image").toString().startsWith("2nd_string"));

  fake.session.volume = 0.49F;
  controller.checkVolume();
  controller.LEDDisplay.setImage("green64.png");
  controller.LEDDisplay128.setImage("green64.png");
  settle();
  EXPECT_EQ(item(lamp).property("image"), "green64.png");
  EXPECT_EQ(item("turnUpTheVolumeLabel").property("blinking"), true);
  EXPECT_EQ(item("turnUpTheVolumeTriangleLabel").property("blinking"), true);
  fake.session.volume = 0.5F;
  controller.checkVolume();
  settle();
  EXPECT_FALSE(shows("turnUpTheVolumeLabel"));
  EXPECT_FALSE(shows("turnUpTheVolumeTriangleLabel"));
}

// The pictures that are loaded, and how many pixels each has.
void addPictures(QQuickItem& item, std::map<QString, double>& pixels) {
  const QString source = item.property("source").toString();
  const int density = source.endsWith("@2x.png") ? 2 : 1;
  if (!source.isEmpty()) {
    pixels[source] = density * density * item.implicitWidth() * item.implicitHeight();
  }
  for (QQuickItem* child : item.childItems()) addPictures(*child, pixels);
}

TEST_P(LayoutsTest, LoadsNoMorePicturesThanItShows) {
  std::map<QString, double> pixels;
  addPictures(root(), pixels);
  double sum = 0;
  for (const auto& picture : pixels) sum += picture.second;
  EXPECT_LT(sum, model.width * model.height + 200000) << "with what is small";

  const auto isFineCello = [](const auto& picture) {
    return picture.first.contains("/cello") && picture.first.endsWith("@2x.png");
  };
  EXPECT_EQ(std::ranges::count_if(pixels, isFineCello), 0);
  window().resize(2 * int(model.width), 2 * int(model.height));
  settle();
  addPictures(root(), pixels);
  EXPECT_EQ(std::ranges::count_if(pixels, isFineCello), 1) << "crisp, when it is large";
}

TEST_P(LayoutsTest, SettingsReachTheController) {
  click("settings");
  for (const int a4 : {392, 415, 432, 440, 441, 442, 443, 444, 466}) {
    click(QString("setA%1btn").arg(a4));
    EXPECT_EQ(fake.settings.integerForKey("a4InHzSavedValue"), a4);
    EXPECT_EQ(item(QString("setA%1btn").arg(a4)).property("backgroundImage"), "selectedFreqBg.png");
  }
  const auto chartLabels = [this] {
    return controller.firstStringFreq.text() + "|" + controller.secondStringFreq.text() + "|" +
           controller.thirdStringFreq.text() + "|" + controller.fourthStringFreq.text();
  };
  const std::string at466 = "A3 = 233.0Hz|D3 = 155.5Hz|G2 = 103.8Hz|C2 = 69.3Hz";
  EXPECT_EQ(chartLabels(), at466);
  for (const bool on : {false, true}) {
    click("freqChartSwitch");
    EXPECT_EQ(fake.settings.boolForKey("frequencyChartEnabled"), on);
    EXPECT_EQ(chartLabels(), at466) << "only the next refresh writes";
    click("setA440btn");
  }
  EXPECT_EQ(chartLabels(), "A3 = 220.0Hz|D3 = 146.8Hz|G2 = 98.0Hz|C2 = 65.4Hz");
  click("setFrequencyValueStepper", 0.75);
  EXPECT_EQ(fake.settings.integerForKey("a4InHzSavedValue"), 441);
  EXPECT_EQ(item("calibrationFrequencyValue").property("text"), "441");

  QQuickItem& slider = item("micSensitivitySlider");
  click("micSensitivitySlider", (16 + 0.27 * (slider.width() - 32)) / slider.width());
  EXPECT_EQ(controller.sensitivity().bottomLimit, 0.005) << "the row of the unrounded value, 2.7";
  EXPECT_EQ(slider.property("value"), 3) << "the snapped value comes back";

  click("soundNotificationSwitch");
  EXPECT_FALSE(controller.feedback().soundNotificationOn);
  EXPECT_FALSE(fake.settings.boolForKey("soundNotificationEnabled"));
  EXPECT_FALSE(fake.settings.boolForKey("stringSoundsEnabled"));
  click("stringSoundsSwitch");
  EXPECT_TRUE(controller.feedback().stringSoundsOn);
  EXPECT_TRUE(fake.settings.boolForKey("stringSoundsEnabled"));
  for (const char* line : {"Has apagado el Switch, valor de la variable = 0",
                           "Has encendido el Switch, valor de la variable = 1",
                           "Frequency chart IS NOT enabled: 0", "Frequency chart IS enabled: 1"}) {
    EXPECT_EQ(fake.log.count(line), 1) << line;
  }
  QMetaObject::invokeMethod(&item("setA415btn"), "activated");
  EXPECT_EQ(item("setA415btn").property("backgroundImage"), "selectedFreqBg.png") << "at once";
  controller.setA415btn.setEnabled(false);
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
  EXPECT_NEAR(controller.tuningFork().synthesizer().toneFrequency, 65.4064, 1e-4);
  click("stopFreqPlay");
  click("stopFreqPlay");
  EXPECT_EQ(fake.output.stops, 1);
  click("a3TFButton");
  closePanel();
  EXPECT_EQ(fake.output.stops, 2);
  EXPECT_EQ(fake.settings.integerForKey("currentlyUsingTuningFork"), 0);
  EXPECT_EQ(fake.log.count("Tuning fork is enabled: 1"), 1);
  EXPECT_EQ(fake.log.count("Tuning fork is enabled: 0"), 1);

  for (const char* panel : {"chart", "about"}) {
    click(panel);
    EXPECT_EQ(openPanel(), panel);
    closePanel();
  }
  EXPECT_EQ(faults.lines, std::vector<std::string>{});
}

INSTANTIATE_TEST_SUITE_P(Devices, LayoutsTest, differentDevices(), nameOfRow);

struct LayoutTest : OnFakes, ::testing::Test {};

TEST_F(LayoutTest, ASimulatedDeviceLiesInTheMiddleAndLeavesNothingBehind) {
  show({.model = desktopDevice()});
  window().resize(1000, 422);
  QTest::qWait(30);
  EXPECT_EQ(root().scale(), 0.5);
  EXPECT_EQ(shown->inWindow({0, 0}), QPointF(402, 0));
  EXPECT_EQ(shown->inWindow({390, 844}), QPointF(597, 422));

  controller.freq_label.setText("pending");
  shown->installLayout("Main_nothing");
  EXPECT_FALSE(shown->hasLayout());
  EXPECT_EQ(faults.lines.size(), 2U);
  EXPECT_FALSE(controller.freq_label.present());
  EXPECT_EQ(controller.freq_label.text(), "");
  settle();
}

TEST_F(LayoutTest, FaultsAreNamed) {
  constexpr const char* kComponents = R"(
    import QtQuick
    Item {
      component Seen: Item { property bool hidden; property real alpha; property bool blinking }
      component Named: Seen { objectName: "freq_label"; property string text }
      component Control: Item { objectName: "x"; property string action; signal activated() })";
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
    component.setData(QByteArray(kComponents) + items + "}", QUrl("test.qml"));
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
