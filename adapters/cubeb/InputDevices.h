// The microphones that the sound system knows, and which of them to use.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

struct cubeb;

namespace endpin {

struct InputDevice {
  std::string id;    // as the sound system names it
  std::string name;  // for people
  bool isDefault = false;
  bool isMonitor = false;   // hears what a speaker plays; no microphone unless asked for by name
  bool isPluggedIn = true;  // false: a socket with nothing in it
  std::uint32_t rate = 0;   // hertz, its own; 0 when not known
  const void* handle = nullptr;  // the library's; good as long as the context it came from
};

// Nothing when the sound system cannot tell.
// Thread: one that may wait for the sound server.
[[nodiscard]] std::optional<std::vector<InputDevice>> enumerateInputs(cubeb* context);

// The device with that id, or else that name; for the empty name the default microphone, or any
// other when the default is none. Null when there is none.
[[nodiscard]] const InputDevice* chooseInput(const std::vector<InputDevice>& devices,
                                             const std::string& wanted);

// Asks the sound system from a thread of its own, which a hung server cannot make the caller wait
// for. Gives up after `limit`, or as soon as `cancelled` says so, and then returns nothing.
[[nodiscard]] std::optional<std::vector<InputDevice>> listInputs(
    std::chrono::milliseconds limit, const std::function<bool()>& cancelled);

}  // namespace endpin
