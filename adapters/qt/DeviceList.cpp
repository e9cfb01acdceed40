#include "adapters/qt/DeviceList.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>

namespace endpin {
namespace {

using enum InterfaceIdiom;

constexpr std::array<DeviceModel, 21> kDevices = {{
    {Phone, 480, 320, 0, 0},     {Phone, 568, 320, 0, 0},      {Phone, 667, 375, 0, 0},
    {Phone, 736, 414, 0, 0},     {Phone, 812, 375, 44, 34},    {Phone, 844, 390, 47, 34},
    {Phone, 852, 393, 59, 34},   {Phone, 874, 402, 62, 34},    {Phone, 896, 414, 48, 34},
    {Phone, 926, 428, 47, 34},   {Phone, 932, 430, 59, 34},    {Phone, 956, 440, 62, 34},
    {Tablet, 1024, 768, 0, 0},   {Tablet, 1080, 810, 24, 20},  {Tablet, 1112, 834, 24, 20},
    {Tablet, 1133, 744, 24, 20}, {Tablet, 1180, 820, 24, 20},  {Tablet, 1194, 834, 24, 20},
    {Tablet, 1210, 834, 24, 20}, {Tablet, 1366, 1024, 24, 20}, {Tablet, 1376, 1032, 24, 20},
}};

constexpr double kWidestPhone = 500;
constexpr double kWidestTablet = 1100;

// How badly a layout would fill a screen: the part that its bars would cover counts most, then by
// how much it would have to be scaled.
double misfit(const DeviceModel& model, double width, double height) {
  const double shape = std::abs(std::log((width / height) / (model.width / model.height)));
  const double size = std::abs(std::log(height / model.height));
  return shape + 0.1 * size;
}

}  // namespace

std::span<const DeviceModel> deviceList() {
  return kDevices;
}

std::string nameOf(const DeviceModel& model) {
  return fmt::format("{}:{:.0f}", model.idiom == Phone ? "phone" : "tablet", model.height);
}

std::optional<DeviceModel> deviceNamed(std::string_view name) {
  const auto found = std::find_if(kDevices.begin(), kDevices.end(),
                                  [name](const auto& model) { return nameOf(model) == name; });
  if (found == kDevices.end()) return {};
  return *found;
}

const DeviceModel& desktopDevice() {
  return kDevices[5];
}

std::optional<DeviceModel> deviceForScreen(double width, double height, bool touch) {
  const double shortSide = std::min(width, height);
  const bool upright = height > width;
  const bool phone = shortSide < kWidestPhone && (touch || upright);
  const bool tablet = shortSide <= kWidestTablet && touch && upright;
  if (shortSide <= 0 || (!phone && !tablet)) return {};

  const InterfaceIdiom idiom = phone ? Phone : Tablet;
  // The layouts are upright, also on a screen that lies.
  const double longSide = std::max(width, height);
  return *std::min_element(kDevices.begin(), kDevices.end(), [&](const auto& a, const auto& b) {
    if (a.idiom != b.idiom) return a.idiom == idiom;
    return misfit(a, shortSide, longSide) < misfit(b, shortSide, longSide);
  });
}

}  // namespace endpin
