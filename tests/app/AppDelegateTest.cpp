// Which layout a device gets, and start-up in its order.
#include "app/AppDelegate.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include "tests/fakes/FakePlatform.h"

namespace endpin {
namespace {

class FakeScreen final : public Screen {
 public:
  void installLayout(const std::string& name) override { calls.push_back(name); }
  bool asksForStatusBar() const override { return asks; }
  void setNeedsStatusBarAppearanceUpdate(bool hidden) override {
    calls.push_back("asked, hidden " + std::to_string(hidden));
  }
  void setStatusBarHidden(bool hidden, int animation) override {
    calls.push_back("hidden " + std::to_string(hidden) + " animation " + std::to_string(animation));
  }

  bool asks = true;
  std::vector<std::string> calls;
};

class AppDelegateTest : public testing::Test {
 protected:
  fakes::FakePlatform fake_;
  FakeScreen screen_;
  AppDelegate delegate_{{fake_.device, screen_, fake_.log}};
};

TEST_F(AppDelegateTest, ChoosesTheLayoutByIdiomAndExactHeight) {
  struct Row {
    std::optional<int> idiom;
    double height;
    const char* layout;  // null for none
  };
  for (const Row& row : {
           Row{0, 480, "Main_iPhone4s"},
           Row{0, 568, "Main_iPhone"},
           Row{0, 667, "Main_iPhone6"},
           Row{0, 736, "Main_iPhone6Plus"},
           Row{0, 812, "Main_iPhoneX"},
           Row{0, 844, "Main_iPhone12Pro"},
           Row{0, 852, "Main_iPhone12Pro"},
           Row{0, 874, "Main_iPhone12Pro"},
           Row{0, 896, "Main_iPhoneXSMax"},
           Row{0, 926, "Main_iPhone12ProMax"},
           Row{0, 932, "Main_iPhone12ProMax"},
           Row{0, 956, "Main_iPhone12ProMax"},
           Row{1, 1024, "Main_iPad"},
           Row{1, 1080, "Main_iPad_Pro_10_5"},
           Row{1, 1112, "Main_iPad_Pro_10_5"},
           Row{1, 1180, "Main_iPad_Pro_10_5"},
           Row{1, 1133, "Main_iPad_Mini6"},
           Row{1, 1194, "Main_iPad_Pro_11"},
           Row{1, 1210, "Main_iPad_Pro_11"},
           Row{1, 1366, "Main_iPad_Pro"},
           Row{1, 1376, "Main_iPad_Pro"},
           Row{0, 700, nullptr},
           Row{0, 667.5, nullptr},
           Row{0, 1024, nullptr},
           Row{1, 844, nullptr},
           Row{2, 844, nullptr},
           Row{{}, 844, nullptr},
       }) {
    fake_.device.idiom = row.idiom;
    fake_.device.height = row.height;
    fake_.log.lines.clear();
    screen_.calls.clear();
    AppDelegate delegate({fake_.device, screen_, fake_.log});
    delegate.initializeStoryBoardBasedOnScreenSize();
    EXPECT_EQ(delegate.hasWindow(), row.layout != nullptr);
    EXPECT_EQ(screen_.calls,
              row.layout ? std::vector<std::string>{row.layout} : std::vector<std::string>{})
        << row.height;
    const bool phone = row.idiom == 0;
    EXPECT_EQ(fake_.log.lines.size(), phone ? 5U : 0U) << row.height;
    EXPECT_EQ(fake_.log.count("iPhone has a height of: " + std::to_string(row.height)),
              phone ? 5 : 0);
  }
}

TEST_F(AppDelegateTest, HidesTheStatusBarAfterTheLayout) {
  EXPECT_TRUE(delegate_.applicationDidFinishLaunching());
  EXPECT_EQ(screen_.calls, (std::vector<std::string>{"Main_iPhone12Pro", "asked, hidden 1"}));
  screen_.asks = false;
  screen_.calls.clear();
  fake_.device.height = 1;
  EXPECT_TRUE(delegate_.applicationDidFinishLaunching()) << "whatever is missing";
  EXPECT_EQ(screen_.calls, (std::vector<std::string>{"hidden 1 animation 2"}));
}

}  // namespace
}  // namespace endpin
