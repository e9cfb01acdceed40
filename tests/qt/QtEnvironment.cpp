// The application object that every test of the screen needs, without a display.
#include <gtest/gtest.h>

#include <QGuiApplication>
#include <memory>

// Asked by the leak checker, where there is one: the toolkit's software renderer leaves the
// pictures of the last window to the end of the process, and cubeb forgets a few bytes of the sound
// server's library.
extern "C" const char* __lsan_default_suppressions();
extern "C" const char* __lsan_default_suppressions() {
  return "leak:libQt6Gui.so\nleak:libQt6Quick.so\nleak:libQt6Core.so\nleak:libpulse.so\n";
}

namespace {

class QtEnvironment final : public ::testing::Environment {
 public:
  void SetUp() override {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("QT_QUICK_BACKEND", "software");
    application_ = std::make_unique<QGuiApplication>(argumentCount_, arguments_);
  }
  void TearDown() override { application_.reset(); }

 private:
  int argumentCount_ = 1;
  char name_[12] = "screen-test";
  char* arguments_[2] = {name_, nullptr};
  std::unique_ptr<QGuiApplication> application_;
};

[[maybe_unused]] const auto* const environment =
    ::testing::AddGlobalTestEnvironment(new QtEnvironment);

}  // namespace
