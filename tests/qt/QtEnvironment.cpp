// The application object that every test of the screen needs, without a display.
#include <gtest/gtest.h>

#include <QGuiApplication>

// Asked by the leak checker, where there is one: the toolkit's software renderer leaves the
// pictures of the last window to the end of the process, and cubeb forgets a few bytes of the sound
// server's library.
extern "C" const char* __lsan_default_suppressions();
extern "C" const char* __lsan_default_suppressions() {
  return "leak:libQt6Gui.so\nleak:libQt6Quick.so\nleak:libQt6Core.so\nleak:libpulse.so\n";
}

int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  qputenv("QT_QUICK_BACKEND", "software");
  ::testing::InitGoogleTest(&argc, argv);
  const QGuiApplication application(argc, argv);
  return RUN_ALL_TESTS();
}
