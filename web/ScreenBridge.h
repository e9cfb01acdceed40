// The screen on the other side of the bridge: announces the elements and actions of the screen
// table to the page, tells it what changes, and carries out what the user does there. It knows none
// of them by name. Thread: main.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "app/ScreenTable.h"

namespace endpin {

class ScreenBridge {
 public:
  // `controller` outlives the bridge. Announces everything; the values follow with the first push.
  explicit ScreenBridge(ViewController& controller);
  ~ScreenBridge();
  ScreenBridge(const ScreenBridge&) = delete;
  ScreenBridge& operator=(const ScreenBridge&) = delete;

  // Tells the page each property that reads otherwise than when it was told last.
  void push();

  // Carries out an action with the control of that name, empty for none, after its value has become
  // `value`: "true" or "false", or decimal digits; empty leaves it. False, and nothing happens, for
  // an unknown action and for one that wants another kind of control.
  bool perform(std::string_view action, std::string_view sender, std::string_view value);

 private:
  struct Element {
    const OutletRow* row;
    View* view;
    bool changed = true;
    std::vector<ViewValue> told;  // as many as its kind has properties
  };

  void push(Element& element);

  ViewController& controller_;
  std::vector<Element> elements_;
};

}  // namespace endpin
