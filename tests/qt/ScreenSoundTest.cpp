// The whole application from the microphone to the speaker: the real screen on a sound server of
// the test's own, where a sampled cello is bowed and a tone is pressed.
#include <gtest/gtest.h>

#include <QTest>
#include <cmath>
#include <cstdio>
#include <cstdlib>

#include "adapters/bundle/FileBundle.h"
#include "adapters/cubeb/CubebMicrophone.h"
#include "adapters/cubeb/CubebOutput.h"
#include "adapters/cubeb/CubebPlayers.h"
#include "adapters/offline/MemoryStore.h"
#include "adapters/pulse/DesktopAudioSession.h"
#include "adapters/qt/LayoutWindow.h"
#include "adapters/qt/QtRunLoop.h"
#include "audio/LumoListener.h"
#include "tests/fakes/FakePlatform.h"
#include "tests/qt/FindItem.h"
#include "tests/support/PrivateSoundServer.h"
#include "tests/support/SampledCello.h"

namespace endpin::testing {
namespace {

class ScreenSound : public ::testing::Test {
 protected:
  void SetUp() override {
    if (!whyNoSampledCello().empty()) GTEST_SKIP() << whyNoSampledCello();
    if (!server_.start()) GTEST_SKIP() << server_.reason();
    for (const auto& [name, value] : server_.environment()) setenv(name.c_str(), value.c_str(), 1);
    setUpWindow();
  }
  void TearDown() override { LumoListener::releaseSharedListener(); }

  // A launch after the first one, so that the beep is on.
  void setUpWindow() {
    settings_.setBool("NewFirstLaunchCello", true);
    settings_.setInteger("a4InHzSavedValue", 440);
    settings_.setBool("soundNotificationEnabled", true);
    app_ = std::make_unique<Application>(settings_);
    app_->window.setReducedMotion(true);
    app_->window.installLayout("Main_iPhone12Pro");
    QTest::qWait(10);
  }

  void click(const QString& wanted) {
    QQuickItem* item = findItem(*app_->window.root(), wanted);
    ASSERT_TRUE(item) << wanted.toStdString();
    const QPointF middle = item->mapToScene({item->width() / 2, item->height() / 2});
    QTest::mouseClick(&app_->window.window(), Qt::LeftButton, {}, middle.toPoint());
    QTest::qWait(10);
  }

  struct Application {
    explicit Application(MemoryStore& store)
        : platform{microphone, session, players, output, runLoop, store, device, bundle, log} {}
    fakes::FakeLog log;
    fakes::FakeDevice device;
    FileBundle bundle{{ENDPIN_RESOURCES, "en", "1"}, log};
    CubebMicrophone microphone{"", log};
    CubebOutput output;
    CubebPlayers players;
    DesktopAudioSession session;
    QtRunLoop runLoop;
    Platform platform;
    ViewController controller{platform, false};
    LayoutWindow window{{.model = *deviceNamed("phone:844")}, controller, log};
  };

  PrivateSoundServer server_;
  MemoryStore settings_;
  std::unique_ptr<Application> app_;
};

TEST_F(ScreenSound, ABowedStringLightsTheLampAndBeepsOnce) {
  ASSERT_TRUE(QTest::qWaitFor(
      [this] { return app_->microphone.status().state == MicrophoneStatus::State::Open; }, 5000));
  const std::string file = server_.folder().file("d3.wav");
  writeWav(file, sampledCello({.midiNote = 50, .frequency = kCelloStrings[1].frequency}));
  const ChildProcess speaker = server_.record("speaker.monitor");
  const ChildProcess bow = server_.playIntoMicrophone(file);
  ViewController& controller = app_->controller;
  EXPECT_TRUE(
      QTest::qWaitFor([&] { return controller.LEDDisplay128->image() == "green128.png"; }, 5000));
  EXPECT_EQ(controller.noteDisplay->text(), "D3");
  QTest::qWait(2000);  // held in tune: no second beep
  EXPECT_EQ(findItem(*app_->window.root(), "noteDisplay")->property("text").toString(), "D3");
  const double beep = soundingSeconds(PrivateSoundServer::recorded(speaker));
  std::printf("  the speaker sounded for %.3f s\n", beep);
  EXPECT_GT(beep, 0.15);
  EXPECT_LT(beep, 0.30) << "one beep lasts 0.22 s";
}

TEST_F(ScreenSound, APressedToneSoundsAtItsPitch) {
  click("fork");
  const ChildProcess speaker = server_.record("speaker.monitor");
  click("a3TFButton");
  EXPECT_EQ(app_->controller.tfnoteDisplay->text(), "A3");
  // The longest part without a gap, as a busy machine tears them.
  const auto heard = [&] { return longestPart(PrivateSoundServer::recorded(speaker)); };
  ASSERT_TRUE(QTest::qWaitFor([&] { return heard().seconds() > 0.5; }, 15000));
  const double frequency = fundamentalOf(heard(), 220.0);
  std::printf("  heard %.4f Hz\n", frequency);
  EXPECT_NEAR(frequency, 220.0, 0.1);
  click("stopFreqPlay");
  EXPECT_EQ(app_->controller.tuningFork().curPlayState, TuningFork::Stopped);
}

}  // namespace
}  // namespace endpin::testing
