// What the desktop's screen saver is told, on a session bus of the test's own.
#include "adapters/qt/IdleInhibitor.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDBusConnection>
#include <QTest>
#include <vector>

#include "tests/fakes/FakePlatform.h"
#include "tests/support/ChildProcess.h"

namespace endpin {
namespace {

class ScreenSaver final : public QObject {
  Q_OBJECT
  Q_CLASSINFO("D-Bus Interface", "org.freedesktop.ScreenSaver")

 public Q_SLOTS:
  unsigned Inhibit(const QString& application, const QString& reason) {
    EXPECT_EQ(application, "Endpin");
    EXPECT_FALSE(reason.isEmpty());
    held.push_back(++last);
    return last;
  }
  void UnInhibit(unsigned cookie) { std::erase(held, cookie); }

 public:
  std::vector<unsigned> held;
  unsigned last = 100;
};

TEST(IdleInhibitor, HoldsTheScreenOnceAndLetsItGo) {
  testing::ChildProcess bus({"dbus-daemon", "--session", "--nofork", "--print-address"});
  if (!QTest::qWaitFor([&] { return bus.output().ends_with('\n'); }, 5000)) {
    GTEST_SKIP() << "dbus-daemon does not start: " << bus.errors();
  }
  const QString address = QString::fromStdString(bus.output()).trimmed();
  qputenv("DBUS_SESSION_BUS_ADDRESS", address.toUtf8());

  fakes::FakeLog log;
  {
    IdleInhibitor nobody(log);
    nobody.setInhibited(true);
    EXPECT_TRUE(QTest::qWaitFor([&] { return log.lines.size() == 1; })) << "no desktop answers";
  }
  ScreenSaver saver;
  QDBusConnection desktop = QDBusConnection::connectToBus(address, "desktop");
  ASSERT_TRUE(desktop.registerObject("/org/freedesktop/ScreenSaver", &saver,
                                     QDBusConnection::ExportAllSlots));
  ASSERT_TRUE(desktop.registerService("org.freedesktop.ScreenSaver"));
  const auto holds = [&](unsigned requests, std::size_t held) {
    return QTest::qWaitFor([&] { return saver.last == requests && saver.held.size() == held; });
  };
  {
    IdleInhibitor inhibitor(log);
    inhibitor.setInhibited(true);
    inhibitor.setInhibited(true);
    EXPECT_TRUE(holds(101, 1));
    QTest::qWait(100);  // for the answer; a second request would show
    EXPECT_TRUE(holds(101, 1));
    inhibitor.setInhibited(false);
    inhibitor.setInhibited(true);
    inhibitor.setInhibited(false);  // before the answer to the second request
    EXPECT_TRUE(holds(102, 0));
    inhibitor.setInhibited(true);
    EXPECT_TRUE(holds(103, 1));
    QTest::qWait(100);
  }
  EXPECT_TRUE(holds(103, 0)) << "held after its end";
  EXPECT_EQ(log.lines.size(), 1U);
}

}  // namespace
}  // namespace endpin

#include "IdleInhibitorTest.moc"
