#include "app/DeviceChoice.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

namespace endpin {
namespace {

using enum InterfaceIdiom;

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

std::string nameOf(const DeviceModel& model) {
  return fmt::format("{}:{:.0f}", model.idiom == Phone ? "phone" : "tablet", model.height);
}

std::optional<DeviceModel> deviceNamed(std::string_view name) {
  const auto found = std::find_if(kDeviceTable.begin(), kDeviceTable.end(),
                                  [name](const auto& model) { return nameOf(model) == name; });
  if (found == kDeviceTable.end()) return {};
  return *found;
}

const DeviceModel& desktopDevice() {
  return *deviceOf(Phone, 844);
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
  return *std::min_element(kDeviceTable.begin(), kDeviceTable.end(),
                           [&](const auto& a, const auto& b) {
                             if (a.idiom != b.idiom) return a.idiom == idiom;
                             return misfit(a, shortSide, longSide) < misfit(b, shortSide, longSide);
                           });
}

}  // namespace endpin
