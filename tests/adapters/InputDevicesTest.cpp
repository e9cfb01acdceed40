#include "adapters/cubeb/InputDevices.h"

#include <gtest/gtest.h>

namespace endpin {
namespace {

InputDevice device(const char* id, const char* name) {
  InputDevice made;
  made.id = id;
  made.name = name;
  return made;
}

struct InputDevicesTest : ::testing::Test {
  std::vector<InputDevice> devices = {device("out.monitor", "Monitor"), device("usb", "USB mic"),
                                      device("internal", "Internal mic"), device("USB mic", "x")};

  std::string chosen(const std::string& wanted) const {
    const InputDevice* found = chooseInput(devices, wanted);
    return found ? found->id : "none";
  }
};

TEST_F(InputDevicesTest, ByIdThenByName) {
  EXPECT_EQ(chosen("internal"), "internal");
  EXPECT_EQ(chosen("Internal mic"), "internal");
  EXPECT_EQ(chosen("USB mic"), "USB mic");  // an id comes before a name
  EXPECT_EQ(chosen("usb mic"), "none");
}

TEST_F(InputDevicesTest, TheDefaultOneUnlessItIsNoMicrophone) {
  devices[0].isMonitor = true;
  devices[2].isDefault = true;
  EXPECT_EQ(chosen(""), "internal");
  devices[2].isPluggedIn = false;
  EXPECT_EQ(chosen(""), "usb");
  devices[2].isDefault = false;
  devices[0].isDefault = true;
  EXPECT_EQ(chosen(""), "usb");
  devices.resize(1);  // only what a speaker plays is left
  EXPECT_EQ(chosen(""), "none");
  EXPECT_EQ(chosen("out.monitor"), "out.monitor");
}

}  // namespace
}  // namespace endpin
