// Which device of the table a screen is: by the name that a user gives, or by its size.
// Thread: any.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "ports/DeviceTable.h"

namespace endpin {

// "phone:667", "tablet:1366": how a device is named on the command line.
[[nodiscard]] std::string nameOf(const DeviceModel& model);
[[nodiscard]] std::optional<DeviceModel> deviceNamed(std::string_view name);

// What a desktop shows in a window.
[[nodiscard]] const DeviceModel& desktopDevice();

// The device whose layout is to fill a screen of this size (points): nothing on a desktop, which
// shows a window. A phone's screen is under 500 points wide, and can be touched or stands upright;
// a tablet's, up to the size of a large one, does both: a larger one that lies is most likely a
// laptop's, and so is a small one without touch, whose desktop is shown enlarged.
[[nodiscard]] std::optional<DeviceModel> deviceForScreen(double width, double height, bool touch);

}  // namespace endpin
