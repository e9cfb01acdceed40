#include "app/LayoutTable.h"

#include <array>

namespace endpin {

std::span<const StoryboardChoice> storyboardChoices() {
  using enum InterfaceIdiom;
  static const std::array<StoryboardChoice, 15> kChoices = {{
      {Phone, {480}, "Main_iPhone4s"},
      {Phone, {568}, "Main_iPhone"},
      {Phone, {667}, "Main_iPhone6"},
      {Phone, {736}, "Main_iPhone6Plus", true},
      {Phone, {812}, "Main_iPhoneX", true},
      {Phone, {874, 844, 852}, "Main_iPhone12Pro", true},
      {Phone, {896}, "Main_iPhoneXSMax", true},
      {Phone, {956, 926, 932}, "Main_iPhone12ProMax", true},
      {Tablet, {1024}, "Main_iPad"},
      {Tablet, {1080}, "Main_iPad_Pro_10_5"},
      {Tablet, {1112}, "Main_iPad_Pro_10_5"},
      {Tablet, {1133}, "Main_iPad_Mini6"},
      {Tablet, {1180}, "Main_iPad_Pro_10_5"},
      {Tablet, {1194, 1210}, "Main_iPad_Pro_11"},
      {Tablet, {1366, 1376}, "Main_iPad_Pro"},
  }};
  return kChoices;
}

}  // namespace endpin
