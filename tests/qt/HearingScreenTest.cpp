// What the screen tells of hearing itself, to the eye and to a screen reader, in every layout.
#include <gtest/gtest.h>

#include <QAccessible>
#include <QImage>
#include <algorithm>

#include "tests/qt/LayoutFixture.h"

namespace endpin {
namespace {

// What is spoken of its own accord: the names of notifications and alerts as they become visible.
struct Told {
  explicit Told(QQuickItem& item) { follow(item); }
  void follow(QQuickItem& item) {
    const QAccessibleInterface* face = QAccessible::queryAccessibleInterface(&item);
    const QAccessible::Role role = face ? face->role() : QAccessible::NoRole;
    if (role == QAccessible::AlertMessage || role == QAccessible::Notification) {
      QObject::connect(&item, &QQuickItem::visibleChanged, &context, [this, &item, face] {
        if (item.isVisible()) texts.push_back(face->text(QAccessible::Name).toStdString());
      });
    }
    for (QQuickItem* child : item.childItems()) follow(*child);
  }
  QObject context;
  std::vector<std::string> texts;
};

class HearingScreenTest : public LayoutFixture {
 protected:
  HearingScreenTest() {
    EXPECT_TRUE(QTest::qWaitFor([this] { return shows("announcement"); })) << "the first start's";
  }
  QAccessibleInterface& spoken(const QString& wanted) {
    return *QAccessible::queryAccessibleInterface(&item(wanted));
  }
  std::string nameOf(const QString& wanted) {
    return spoken(wanted).text(QAccessible::Name).toStdString();
  }
  std::string explanationOf(const QString& wanted) {
    return spoken(wanted).text(QAccessible::Description).toStdString();
  }
  QQuickItem& chooser() { return *item("microphoneName").parentItem(); }
};

TEST_P(HearingScreenTest, ATroubleReplacesWhatIsHeard) {
  fake.session.volume = 0.2F;
  controller.checkVolume();
  controller.noteDisplay.setText("A3");
  controller.freq_label.setText("220.0Hz");
  for (const bool troubled : {false, true, false}) {
    controller.troubleTitle.setText(troubled ? "No sound here" : "");
    settle();
    EXPECT_EQ(shows("troubleTitle"), troubled);
    for (const char* outlet : {"turnUpTheVolumeLabel", "noteDisplay", "freq_label"}) {
      EXPECT_EQ(shows(outlet), !troubled) << outlet;
    }
    EXPECT_EQ(item(lamp).property("shown") == "lampDark.png", troubled);
  }
}

TEST_P(HearingScreenTest, TheLevelIsSeenInThreeStepsWithLessMotionAndAnsweredWhenAsked) {
  const auto repaints = [this](double level) {
    const QImage before = window().grabWindow();
    controller.inputLevel.setLevel(level);
    settle();
    return before != window().grabWindow();
  };
  EXPECT_EQ(explanationOf("freq_label"), "ListeningTitle");
  EXPECT_TRUE(repaints(1));
  EXPECT_EQ(explanationOf("freq_label"), "HeardTooQuiet");
  EXPECT_FALSE(repaints(3));
  EXPECT_TRUE(repaints(4));
  EXPECT_EQ(explanationOf("freq_label"), "ListeningTitle");
  EXPECT_FALSE(repaints(7));
  shown->setReducedMotion(false);
  for (const double level : {6.0, 5.0, 4.0, 3.0, 2.0, 1.0, 0.0}) EXPECT_TRUE(repaints(level));
  controller.freq_label.setText("220.0Hz");
  EXPECT_TRUE(repaints(2)) << "the light around the lamp";

  controller.freq_label.setText("");
  controller.firstNoteHint.setText("Streiche eine Saite an");
  settle();
  const QQuickItem& hint = item("firstNoteHint");
  EXPECT_GE(hint.y(), item("dock").y() - 0.4 * height);
  EXPECT_LE(hint.y() + hint.height(), item("dock").y());
  controller.freq_label.setText("220.0Hz");
  settle();
  EXPECT_FALSE(shows("firstNoteHint"));
}

TEST_P(HearingScreenTest, AMicrophoneIsChosenByMouseAndByKeys) {
  fake.runLoop.advance(0.1);
  open("settings");
  EXPECT_EQ(nameOf("microphoneName"), "");
  QAccessibleInterface& row = *QAccessible::queryAccessibleInterface(&chooser());
  EXPECT_EQ(row.text(QAccessible::Name), "[MicrophoneTitle]");
  EXPECT_EQ(row.text(QAccessible::Description), "Built-in, ListFolded");
  EXPECT_FALSE(shows("microphoneChoices"));

  chooser().forceActiveFocus(Qt::TabFocusReason);
  press(Qt::Key_Space);
  EXPECT_EQ(row.text(QAccessible::Description), "Built-in, ListUnfolded");
  QAccessibleInterface& list = spoken("microphoneChoices");
  ASSERT_EQ(list.childCount(), 3);
  for (int line = 0; line < 3; ++line) {
    EXPECT_EQ(list.child(line)->role(), QAccessible::RadioButton);
    EXPECT_EQ(bool(list.child(line)->state().checked), line == 0);
  }
  EXPECT_EQ(list.child(0)->text(QAccessible::Description), "[NowUsing]");
  EXPECT_TRUE(list.child(0)->state().focused) << "the chosen one";
  for (const Qt::Key each : {Qt::Key_Down, Qt::Key_Down, Qt::Key_Down, Qt::Key_Return}) press(each);
  QTest::qWait(200);
  EXPECT_EQ(fake.microphones.used.back(), "usb");
  EXPECT_FALSE(shows("microphoneChoices")) << "it folds";
  EXPECT_TRUE(chooser().hasActiveFocus());

  press(Qt::Key_Down);
  EXPECT_TRUE(shows("microphoneChoices"));
  press(Qt::Key_Escape);
  EXPECT_FALSE(shows("microphoneChoices"));
  EXPECT_EQ(openPanel(), "settings") << "the list is folded first";
  EXPECT_EQ(explanationOf("fineHearingSwitch"), "[FineHearingHint]");
  closePanel();
}

TEST_P(HearingScreenTest, EveryControlOfTheSettingsComesIntoSightWithTheFocus) {
  open("settings");
  chooser().forceActiveFocus(Qt::TabFocusReason);
  press(Qt::Key_Space);
  press(Qt::Key_Escape);
  QQuickItem* const first = window().activeFocusItem();
  int stops = 0;
  do {
    press(Qt::Key_Tab);
    const QQuickItem& at = *window().activeFocusItem();
    const QPointF top = at.mapToItem(&root(), {0, 0});
    EXPECT_GE(top.y(), 0) << at.property("name").toString().toStdString();
    EXPECT_LE(top.y() + at.height(), height) << at.property("name").toString().toStdString();
    EXPECT_NE(at.property("name").toString(), "");
  } while (window().activeFocusItem() != first && ++stops < 40);
  EXPECT_EQ(stops, 16) << "close, stepper, nine presets, microphone, slider, four switches";
}

TEST_P(HearingScreenTest, TheMainScreenAppearsAgainWhenTheSettingsCloseAndForNoOtherPanel) {
  for (const char* panel : {"fork", "chart", "about", "settings"}) {
    const RunLoop::TimerId before = controller.timer;
    open(panel);
    EXPECT_EQ(controller.timer, before) << panel;
    closePanel();
    EXPECT_EQ(controller.timer != before, panel == std::string("settings")) << panel;
  }
}

TEST_P(HearingScreenTest, TheChartSaysWhichStringIsTunedByEarAndTheWayOut) {
  open("chart");
  EXPECT_FALSE(shows("byEarMark")) << "at 440 every string is heard";
  closePanel();
  controller.setA443();
  const Told told(root());
  open("chart");
  EXPECT_EQ(explanationOf("fourthStringFreq"), "[TuneByEar]");
  EXPECT_EQ(explanationOf("thirdStringFreq"), "");
  EXPECT_TRUE(shows("byEarHint"));
  click("fineHearingButton");
  EXPECT_TRUE(fake.settings.boolForKey("fineHearingEnabled"));
  for (const char* gone : {"byEarMark", "byEarHint", "fineHearingButton"}) {
    EXPECT_FALSE(shows(gone)) << gone;
  }
  EXPECT_EQ(told.texts, std::vector<std::string>{"FineHearingIsOn"});
}

TEST_P(HearingScreenTest, TheForkStopsOnlyWhatSoundsAndWarnsOfALowVolume) {
  open("fork");
  EXPECT_EQ(nameOf("stopTFButton"), "StopUnavailable");
  EXPECT_FALSE(spoken("stopTFButton").state().focusable);
  click("d3TFButton");
  EXPECT_EQ(nameOf("stopTFButton"), "StopTitle");
  EXPECT_TRUE(spoken("d3TFButton").state().checked);
  EXPECT_FALSE(spoken("a3TFButton").state().checked);
  const double place = item("d3TFButton").mapToItem(&root(), {0, 0}).y();
  fake.session.volume = 0.2F;
  const Told told(root());
  const auto warned = [&told](int times) {
    const auto count = [&told] { return std::ranges::count(told.texts, "TurnUpTheVolume"); };
    return QTest::qWaitFor([&] { return count() >= times; }) && count() == times;
  };
  controller.checkVolume();
  EXPECT_TRUE(warned(1));
  click("a3TFButton");
  EXPECT_EQ(item("d3TFButton").mapToItem(&root(), {0, 0}).y(), place) << "nothing moves";
  item("stopTFButton").forceActiveFocus(Qt::TabFocusReason);
  press(Qt::Key_Space);
  EXPECT_EQ(nameOf("stopTFButton"), "StopUnavailable");
  EXPECT_TRUE(item("a3TFButton").hasActiveFocus()) << "the focus is not lost";
  closePanel();
  open("fork");
  EXPECT_FALSE(item("stopTFButton").isEnabled());
  click("c2TFButton");
  EXPECT_TRUE(warned(2)) << "once a sheet, however often it is seen";
}

TEST_P(HearingScreenTest, AScreenReaderIsToldOnceAndKnowsEveryState) {
  const Told told(root());
  for (const char* text : {"A3 in tune", "", "D3 in tune", "G2 in tune"}) {
    controller.announcement.setText(text);
    const auto wasTold = [&] { return !told.texts.empty() && told.texts.back() == text; };
    EXPECT_TRUE(!*text || QTest::qWaitFor(wasTold)) << text;
  }
  controller.LEDDisplay.setImage("green64.png");
  controller.LEDDisplay128.setImage("green128.png");
  controller.ring1.setImage("ring1.png");
  settle();
  EXPECT_EQ(told.texts, (std::vector<std::string>{"A3 in tune", "D3 in tune", "G2 in tune"}));
  EXPECT_EQ(nameOf("ring1"), "StringTuned");

  open("settings");
  EXPECT_EQ(spoken("setA440btn").role(), QAccessible::RadioButton);
  EXPECT_TRUE(spoken("setA440btn").state().checked);
  EXPECT_FALSE(spoken("setA442btn").state().checked);
  const struct {
    const char* outlet;
    QAccessible::Role role;
    double least, value, most;
  } rows[] = {{"micSensitivitySlider", QAccessible::Slider, 0, 5, 10},
              {"setFrequencyValueStepper", QAccessible::SpinBox, 392, 440, 466}};
  for (const auto& row : rows) {
    EXPECT_EQ(spoken(row.outlet).role(), row.role);
    QAccessibleValueInterface& value = *spoken(row.outlet).valueInterface();
    EXPECT_EQ(value.minimumValue().toDouble(), row.least);
    EXPECT_EQ(value.maximumValue().toDouble(), row.most);
    EXPECT_EQ(value.currentValue().toDouble(), row.value);
    item(row.outlet).forceActiveFocus(Qt::TabFocusReason);
    press(Qt::Key_Left);
    EXPECT_EQ(value.currentValue().toDouble(), row.value - 1);
  }
}

INSTANTIATE_TEST_SUITE_P(Devices, HearingScreenTest, differentDevices(), nameOfRow);

}  // namespace
}  // namespace endpin
