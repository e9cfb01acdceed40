// The devices that the screen is made for, each fact of theirs in one place: their size, what their
// hardware covers, their layout and their pictures. Read by layout selection, the string pictures,
// the chart and whoever stands for a device. Thread: any.
#pragma once

#include <array>

#include "ports/Device.h"

namespace endpin {

// Lengths in points, upright. Heights are compared exactly: a height that no row has gets nothing
// of what the table would say.
struct DeviceModel {
  InterfaceIdiom idiom;
  double height;
  double width;
  const char* layout;           // the file that start-up installs
  const char* stringPictures;   // what follows "1st_string" in the name of their variant
  double safeTop = 0;           // under a notch or a camera
  double safeBottom = 0;        // under the home indicator
  bool largeChart = false;      // a phone that shows the tablets' chart
  bool endsHeightTest = false;  // after this one a phone's start-up logs its own height
};

// In the order in which start-up compares them. Devices share layouts on purpose.
inline constexpr auto kDeviceTable = [] {
  using enum InterfaceIdiom;
  return std::to_array<DeviceModel>({
      // idiom, height, width, layout, string pictures, insets, large chart, ends the test
      {Phone, 480, 320, "Main_iPhone4s", "", 0, 0},
      {Phone, 568, 320, "Main_iPhone", "_5", 0, 0},
      {Phone, 667, 375, "Main_iPhone6", "_6", 0, 0, true},
      {Phone, 736, 414, "Main_iPhone6Plus", "_6plus", 0, 0, true, true},
      {Phone, 812, 375, "Main_iPhoneX", "_6plus", 44, 34, false, true},
      {Phone, 874, 402, "Main_iPhone12Pro", "_6plus", 62, 34},
      {Phone, 844, 390, "Main_iPhone12Pro", "_6plus", 47, 34},
      {Phone, 852, 393, "Main_iPhone12Pro", "_6plus", 59, 34, false, true},
      {Phone, 896, 414, "Main_iPhoneXSMax", "_6plus", 48, 34, false, true},
      {Phone, 956, 440, "Main_iPhone12ProMax", "_6plus", 62, 34},
      {Phone, 926, 428, "Main_iPhone12ProMax", "_6plus", 47, 34},
      {Phone, 932, 430, "Main_iPhone12ProMax", "_6plus", 59, 34, false, true},
      {Tablet, 1024, 768, "Main_iPad", "_iPad", 0, 0},
      {Tablet, 1080, 810, "Main_iPad_Pro_10_5", "_iPad_Pro", 24, 20},
      {Tablet, 1112, 834, "Main_iPad_Pro_10_5", "_iPad_Pro", 24, 20},
      {Tablet, 1133, 744, "Main_iPad_Mini6", "_iPad_Pro", 24, 20},
      {Tablet, 1180, 820, "Main_iPad_Pro_10_5", "_iPad_Pro", 24, 20},
      {Tablet, 1194, 834, "Main_iPad_Pro_11", "_iPad_Pro", 24, 20},
      {Tablet, 1210, 834, "Main_iPad_Pro_11", "_iPad_Pro", 24, 20},
      {Tablet, 1366, 1024, "Main_iPad_Pro", "_iPad_Pro", 24, 20},
      {Tablet, 1376, 1032, "Main_iPad_Pro", "_iPad_Pro", 24, 20},
  });
}();

// The device of that idiom and exact height, or null.
[[nodiscard]] constexpr const DeviceModel* deviceOf(InterfaceIdiom idiom, double height) {
  for (const DeviceModel& model : kDeviceTable) {
    if (model.idiom == idiom && model.height == height) return &model;
  }
  return nullptr;
}

}  // namespace endpin
