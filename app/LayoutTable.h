// Which layout file a device gets: by its interface idiom and the exact height of its screen.
// Thread: main.
#pragma once

#include <initializer_list>
#include <span>

#include "ports/Device.h"

namespace endpin {

struct StoryboardChoice {
  InterfaceIdiom idiom;
  std::initializer_list<double> heights;  // points, compared exactly, in this order
  const char* layout;
  bool logsHeight = false;  // a phone's start-up logs its height after this test
};

// In test order. Devices of one row share a layout on purpose.
[[nodiscard]] std::span<const StoryboardChoice> storyboardChoices();

}  // namespace endpin
