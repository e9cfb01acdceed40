// A desktop's window: one layout at any size, what is remembered of the window, its keys.
#include <gtest/gtest.h>

#include <QFont>
#include <QGuiApplication>
#include <QImage>
#include <QQuickItem>
#include <QRegularExpression>
#include <QScreen>
#include <QTest>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>

#include "tests/qt/LayoutFixture.h"

namespace endpin {
namespace {

struct WindowTest : OnFakes, ::testing::Test {
  // A new window with the settings of the last one, as after a restart.
  void start(Presentation presentation = Presentation::Window, bool notched = false) {
    DeviceModel model = desktopDevice();
    if (!notched) model.safeTop = model.safeBottom = 0;
    show({.model = model, .presentation = presentation, .settings = &fake.settings});
  }
};

QRectF inScene(const QQuickItem& item) {
  return item.mapRectToScene({0, 0, item.width(), item.height()});
}

// What a text covers: from the top of its capitals to the last baseline, or to what hangs below it.
QRectF inkOf(const QQuickItem& text) {
  const double size = text.property("font").value<QFont>().pixelSize();
  const double lines = text.property("lineCount").toDouble() - 1;
  const bool hangs = text.property("text").toString().contains(QRegularExpression("[gjpqyą]"));
  QRectF box = inScene(text);
  const double baseline = box.top() + text.baselineOffset();
  box.setTop(baseline - 0.72 * size);
  box.setWidth(text.property("contentWidth").toDouble());
  box.setBottom(baseline + (lines * text.property("leading").toDouble() + 0.22 * hangs) * size);
  return box;
}

// Everything that can be pressed, of those that are on.
std::vector<QQuickItem*> targetsIn(QQuickItem& item) {
  std::vector<QQuickItem*> targets;
  if (!item.isVisible() || !item.isEnabled()) return targets;
  if (item.property("pressedScale").isValid()) targets.push_back(&item);
  for (QQuickItem* child : item.childItems()) {
    const auto more = targetsIn(*child);
    targets.insert(targets.end(), more.begin(), more.end());
  }
  return targets;
}

// Whether it is part of something that is moved into sight.
bool scrolls(const QQuickItem& item) {
  const QQuickItem* parent = item.parentItem();
  return parent && (parent->property("interactive").toBool() || scrolls(*parent));
}

constexpr int kSeam = 7;  // more than one step of the light

// The greatest difference of a channel from one pixel to the next along a line.
int greatestStep(const QImage& image, QPoint from, QPoint along, int count) {
  int greatest = 0;
  for (int i = 1; i < count; ++i) {
    const QColor a = image.pixelColor(from + along * (i - 1));
    const QColor b = image.pixelColor(from + along * i);
    greatest = std::max({greatest, std::abs(a.red() - b.red()), std::abs(a.green() - b.green()),
                         std::abs(a.blue() - b.blue())});
  }
  return greatest;
}

struct AnySize : WindowTest, ::testing::WithParamInterface<QSize> {
  AnySize() {
    start(Presentation::Window, GetParam() == QSize(390, 844));
    window().resize(GetParam());
    controller.freq_label.setText("146.8Hz");
    controller.noteDisplay.setText("D3");
    controller.setTunedStringsHidden(false);
    fake.session.volume = 0.1F;
    controller.checkVolume();
    QTest::qWait(30);
    for (const char* sign : {"turnUpTheVolumeLabel", "turnUpTheVolumeTriangleLabel"}) {
      item(sign).setProperty("blinking", false);
    }
    cello = inScene(item("cello"));
  }
  const QRectF room{{0, 0}, GetParam()};
  QRectF cello;  // 400 x 1100 units

  // Inside, apart from each other and from what always stands there.
  void expectApart(std::vector<std::pair<const char*, QRectF>> things) {
    const QQuickItem& lamp = item("LEDDisplay128");
    const double halo = 0.16 * lamp.width();
    constexpr double kAir = 6;
    const std::pair<const char*, QRectF> others[] = {
        {"caption", inkOf(item("caption"))},
        {"lamp", inScene(lamp).adjusted(halo, halo - kAir, -halo, kAir - halo)},
        {"dock", inScene(item("dock"))},
        {"pegs", ofCello(110, 10, 290, 230)},
        {"upper body", ofCello(60, 419, 340, 777)},
        {"corners", ofCello(37, 777, 363, 845)},
        {"lower body", ofCello(24, 845, 376, 1012)}};
    things.insert(things.end(), std::begin(others), std::end(others));
    for (auto one = things.begin(); one != things.end(); ++one) {
      EXPECT_TRUE(room.contains(one->second)) << one->first;
      for (auto other = things.begin(); other != one; ++other) {
        EXPECT_FALSE(one->second.intersects(other->second)) << one->first << ", " << other->first;
      }
    }
  }
  [[nodiscard]] QRectF ofCello(double left, double top, double right, double bottom) const {
    const double unit = cello.width() / 400;
    return {cello.topLeft() + unit * QPointF(left, top),
            cello.topLeft() + unit * QPointF(right, bottom)};
  }
};

TEST_P(AnySize, TheRoomRunsOnToEveryEdge) {
  const QImage image = window().grabWindow();
  ASSERT_EQ(image.size(), GetParam());
  const int width = image.width();
  const int height = image.height();
  const int floor = static_cast<int>(std::round(ofCello(0, 0, 0, 1097).bottom()));
  EXPECT_LT(greatestStep(image, {0, 0}, {1, 0}, width), kSeam) << "upper edge";
  EXPECT_LT(greatestStep(image, {0, height - 1}, {1, 0}, width), kSeam) << "lower edge";
  for (const int x : {0, width - 1}) {
    EXPECT_LT(greatestStep(image, {x, 0}, {0, 1}, floor - 2), kSeam) << "above the floor line";
    const int below = height - floor - 3;
    EXPECT_LT(greatestStep(image, {x, floor + 3}, {0, 1}, below), kSeam) << "below it";
    const QPoint inward(x == 0 ? 1 : -1, 0);
    for (int y = 0; y < height; ++y) {
      ASSERT_LT(greatestStep(image, {x, y}, inward, 5), kSeam) << x << ", " << y;
    }
  }
  EXPECT_GT(greatestStep(image, {width - 1, floor - 3}, {0, 1}, 7), 15) << "it reaches the edge";
}

TEST_P(AnySize, NothingIsCutAndNothingOverlaps) {
  EXPECT_NEAR(cello.width() / cello.height(), 400.0 / 1100, 1e-6);
  expectApart({{"note", inkOf(item("noteDisplay"))},
               {"read-out", inkOf(item("freq_label"))},
               {"warning", inkOf(item("turnUpTheVolumeLabel"))},
               {"sign", inScene(item("turnUpTheVolumeTriangleLabel"))}});
}

TEST_P(AnySize, WhatStandsInPlaceOfNoteAndReadOutFitsInEveryLanguage) {
  controller.noteDisplay.setText("");
  controller.freq_label.setText("");
  for (const auto& file : std::filesystem::directory_iterator(ENDPIN_TEXTS)) {
    SCOPED_TRACE(file.path().stem().string());
    const auto texts = nlohmann::json::parse(std::ifstream(file.path()));
    controller.firstNoteHint.setText(texts["BowAString"]);
    QCoreApplication::processEvents();
    expectApart({{"hint", inkOf(item("firstNoteHint"))}, {"dots", inScene(item("waitingDots"))}});
    for (const std::string trouble : {"NoSound", "NoMicrophone", "NotFound", "Muted"}) {
      controller.troubleTitle.setText(texts["Trouble" + trouble]);
      controller.troubleRemedy.setText(texts["Trouble" + trouble + "Remedy"]);
      QCoreApplication::processEvents();
      expectApart({{"title", inkOf(item("troubleTitle"))},
                   {"remedy", inkOf(item("troubleRemedy"))},
                   {"sign", inScene(item("troubleSign"))}});
    }
    controller.troubleTitle.setText("");
  }
}

TEST_P(AnySize, EveryTargetIsLargeEnoughAndInside) {
  for (const char* name : {"", "fork", "chart", "settings", "about"}) {
    open(name);
    if (*name == 'f') click("a3TFButton");
    const auto targets = targetsIn(root());
    EXPECT_GE(targets.size(), *name ? 1U : 4U) << name;
    for (const QQuickItem* target : targets) {
      const QRectF box = inScene(*target);
      const std::string which = std::string(name) + ": " + target->objectName().toStdString();
      EXPECT_GE(std::min(box.width(), box.height()), 44) << which;
      EXPECT_TRUE(room.contains(box) || scrolls(*target)) << which;
    }
  }
}

TEST_P(AnySize, SettingsThatScrollEndWithinARow) {
  open("settings");
  window().grabWindow();  // lays everything out
  bool seenInHalf = false;
  for (const char* caption :
       {"microphoneLabel", "micSensitivityLabel", "fineHearingLabel", "soundNotificationLabel",
        "stringSoundsLabel", "frequencyChartLabel"}) {
    const QQuickItem& row = *item(caption).parentItem();
    const QQuickItem* view = &row;
    while (!view->property("interactive").isValid()) view = view->parentItem();
    if (!view->property("interactive").toBool()) return;
    const double seen = inScene(*view).bottom() - inScene(row).top();
    seenInHalf |= seen > row.height() / 2 + 8 && seen < row.height() + 4;
  }
  EXPECT_TRUE(seenInHalf);
}

TEST_P(AnySize, TheDialogFits) {
  QObject* dialog = root().findChild<QObject*>("ratingDialog");
  ASSERT_TRUE(dialog);
  dialog->setProperty("title", "Bewerte diese App");
  dialog->setProperty("message",
                      "Wenn du diese App gerne benutzt, würdest du dir kurz die Zeit "
                      "nehmen, sie zu bewerten? Vielen Dank für deine Unterstützung!");
  dialog->setProperty("buttons", QStringList{"Jetzt bewerten", "Später erinnern", "Nein, danke"});
  dialog->setProperty("shown", true);
  window().grabWindow();  // lays everything out
  const auto buttons = targetsIn(root());
  ASSERT_EQ(buttons.size(), 3U);
  for (const QQuickItem* button : buttons) {
    for (const QQuickItem* item = button; item != dialog; item = item->parentItem()) {
      EXPECT_TRUE(room.contains(inScene(*item))) << item->y();
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Sizes, AnySize,
                         ::testing::Values(QSize(320, 480), QSize(480, 320), QSize(600, 400),
                                           QSize(844, 390), QSize(900, 900), QSize(1024, 768),
                                           QSize(1366, 1024), QSize(1920, 1080), QSize(2560, 1080),
                                           QSize(330, 1300), QSize(620, 1400), QSize(540, 450),
                                           QSize(840, 699), QSize(390, 844)),
                         [](const auto& row) {
                           return std::to_string(row.param.width()) + "x" +
                                  std::to_string(row.param.height());
                         });

TEST_F(WindowTest, ALayoutIsNeverSmallerThanTheSmallest) {
  start();
  for (const QSize size : {QSize(320, 320), QSize(400, 330), QSize(160, 240)}) {
    window().setMinimumSize({});
    window().resize(size);
    settle();
    EXPECT_GE(std::max(root().width(), root().height()), 480) << size.width();
    EXPECT_GE(std::min(root().width(), root().height()), 320) << size.width();
    EXPECT_NEAR(root().width() * root().scale(), size.width(), 1e-6);
    EXPECT_NEAR(root().height() * root().scale(), size.height(), 1e-6);
  }
}

TEST_F(WindowTest, IsRememberedOverARestart) {
  start();
  EXPECT_EQ(window().size(), QSize(390, 752)) << "the device's, cut to the screen";
  window().setGeometry(40, 60, 700, 500);
  QTest::qWait(600);
  window().setGeometry(45, 65, 710, 510);
  settle();
  window().close();  // before it has settled
  start();
  EXPECT_EQ(window().geometry(), QRect(45, 65, 710, 510));
  EXPECT_EQ(root().size(), QSizeF(710, 510));

  for (const Qt::WindowState state : {Qt::WindowMaximized, Qt::WindowFullScreen}) {
    window().setWindowStates(state);
    start();
    EXPECT_EQ(window().windowStates(), state);
    EXPECT_EQ(root().size(), QSizeF(window().size()));
    EXPECT_EQ(fake.settings.integerForKey("windowWidth"), 710) << "that of the window by itself";
  }
  press(Qt::Key_F11);
  EXPECT_EQ(window().windowStates(), Qt::WindowMaximized) << "as before it filled the screen";
}

TEST_F(WindowTest, WhatIsRememberedHasToBeOfUse) {
  const QSize screen = QGuiApplication::primaryScreen()->availableSize();
  const struct {
    int x, y, width, height;
    bool placed;
    QSize size;
  } rows[] = {
      {-400, 20, 500, 600, true, {500, 600}},
      {-450, 20, 500, 600, false, {500, 600}},
      {screen.width() - 50, 20, 500, 600, false, {500, 600}},
      {20, -40, 500, 600, false, {500, 600}},
      {20, 20, 9000, 9000, true, screen - QSize(0, 48)},
      {20, 20, 0, 600, false, {390, 752}},
  };
  constexpr int kFrame = 4;  // the toolkit keeps the one of its own making on the screen
  for (const auto& row : rows) {
    shown.reset();
    fake.settings.setInteger("windowX", row.x);
    fake.settings.setInteger("windowY", row.y);
    fake.settings.setInteger("windowWidth", row.width);
    fake.settings.setInteger("windowHeight", row.height);
    start();
    const QPoint aside = window().position() - QPoint(row.x, row.y);
    EXPECT_EQ(aside.manhattanLength() <= kFrame, row.placed) << row.x << ", " << row.y;
    EXPECT_EQ(window().size(), row.size) << row.width;
  }
}

TEST_F(WindowTest, OnlyADesktopsOwnWindowIsRemembered) {
  for (const auto kind : {Presentation::Device, Presentation::Picture, Presentation::Screen}) {
    start(kind);
    window().resize(500, 600);
    window().close();
    EXPECT_FALSE(fake.settings.stringForKey("windowWidth"));
  }
}

TEST_F(WindowTest, KeysCloseItAndFillTheScreen) {
  for (const Qt::Key key : {Qt::Key_Q, Qt::Key_W}) {
    start();
    press(key);
    EXPECT_TRUE(window().isVisible()) << "without Ctrl";
    press(key, Qt::ControlModifier);
    EXPECT_FALSE(window().isVisible());
  }
  start();
  window().setWindowStates(Qt::WindowMaximized);
  press(Qt::Key_F11);
  open("settings");
  press(Qt::Key_Escape);
  EXPECT_EQ(openPanel(), "");
  EXPECT_EQ(window().windowStates(), Qt::WindowFullScreen) << "one press closes the panel only";
  press(Qt::Key_Escape);
  EXPECT_EQ(window().windowStates(), Qt::WindowMaximized);
}

TEST_F(WindowTest, TheDockSaysWhatItsPicturesStandFor) {
  start();
  const auto hover = [this](const QPointF& place) {
    QTest::mouseMove(&window(), place.toPoint());
    const auto tip = [this] { return findItem(root(), "tooltip"); };
    return QTest::qWaitFor(tip, 1500) ? tip() : nullptr;
  };
  const QPointF cell = inScene(item("chart")).center();
  const QQuickItem* tip = hover(cell);
  ASSERT_TRUE(tip);
  EXPECT_TRUE(inScene(root()).contains(inScene(*tip)));
  EXPECT_EQ(tip->property("text"), item("chart").property("name"));
  QTest::mousePress(&window(), Qt::LeftButton, {}, cell.toPoint());
  EXPECT_FALSE(findItem(root(), "tooltip")) << "pressed";
  QTest::mouseRelease(&window(), Qt::LeftButton, {}, cell.toPoint());
  press(Qt::Key_Escape);
  EXPECT_TRUE(hover(inScene(item("about")).center()));
  EXPECT_FALSE(hover({10, 10}));
}

}  // namespace
}  // namespace endpin
