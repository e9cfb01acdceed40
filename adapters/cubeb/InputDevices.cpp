#include "adapters/cubeb/InputDevices.h"

#include <cubeb/cubeb.h>

#include <algorithm>
#include <future>
#include <memory>
#include <thread>

namespace endpin {
namespace {

using Inputs = std::optional<std::vector<InputDevice>>;

std::string textOf(const char* text) {
  return text ? text : "";
}

InputDevice describe(const cubeb_device_info& info) {
  InputDevice device;
  device.id = textOf(info.device_id);
  device.name = info.friendly_name ? info.friendly_name : device.id;
  device.isDefault = info.preferred != CUBEB_DEVICE_PREF_NONE;
  device.isMonitor = device.id.ends_with(".monitor");
  device.isPluggedIn = info.state == CUBEB_DEVICE_STATE_ENABLED;
  device.rate = info.default_rate;
  device.handle = info.devid;
  return device;
}

bool isMicrophone(const InputDevice& device) {
  return !device.isMonitor && device.isPluggedIn;
}

Inputs askSoundSystem() {
  cubeb* context = nullptr;
  if (cubeb_init(&context, "Endpin", nullptr) != CUBEB_OK) return std::vector<InputDevice>{};
  auto inputs = enumerateInputs(context);
  cubeb_destroy(context);
  // A sound system that cannot even be asked has no microphone to offer.
  return inputs.value_or(std::vector<InputDevice>{});
}

}  // namespace

Inputs enumerateInputs(cubeb* context) {
  cubeb_device_collection collection{};
  if (cubeb_enumerate_devices(context, CUBEB_DEVICE_TYPE_INPUT, &collection) != CUBEB_OK) {
    return std::nullopt;
  }
  std::vector<InputDevice> devices;
  for (std::size_t i = 0; i < collection.count; ++i) {
    devices.push_back(describe(collection.device[i]));
  }
  cubeb_device_collection_destroy(context, &collection);
  return devices;
}

const InputDevice* chooseInput(const std::vector<InputDevice>& devices, const std::string& wanted) {
  const auto find = [&](auto matches) -> const InputDevice* {
    const auto found = std::find_if(devices.begin(), devices.end(), matches);
    return found == devices.end() ? nullptr : &*found;
  };
  if (wanted.empty()) {
    const auto* device = find([](const auto& d) { return isMicrophone(d) && d.isDefault; });
    return device ? device : find(isMicrophone);
  }
  const auto* device = find([&](const auto& d) { return d.id == wanted; });
  return device ? device : find([&](const auto& d) { return d.name == wanted; });
}

Inputs listInputs(std::chrono::milliseconds limit, const std::function<bool()>& cancelled) {
  // Shared with the thread, which may outlive this call.
  const auto answer = std::make_shared<std::promise<Inputs>>();
  auto inputs = answer->get_future();
  std::thread([answer] { answer->set_value(askSoundSystem()); }).detach();
  const auto deadline = std::chrono::steady_clock::now() + limit;
  while (std::chrono::steady_clock::now() < deadline && !cancelled()) {
    if (inputs.wait_for(std::chrono::milliseconds(20)) == std::future_status::ready) {
      return inputs.get();
    }
  }
  return std::nullopt;
}

}  // namespace endpin
