// Every element and every action of the screen by the names that layouts use: the one list that a
// window, a page, the terminal, fuzzers and tests walk. Names, kinds and values are plain texts,
// numbers and flags, so that a screen may be written in another language. Thread: main.
#pragma once

#include <optional>
#include <span>
#include <string_view>

#include "app/ViewController.h"
#include "ports/Outlets.h"

namespace endpin {

struct OutletRow {
  std::string_view name;
  View& (*of)(ViewController&);
};

// An action of the user. Those that take a control are called with the one that was used.
struct ActionRow {
  std::string_view name;
  std::optional<ViewKind> sender;                  // none: it takes no control
  void (*call)(ViewController&, View*) = nullptr;  // the view is of that kind, or ignored
};

[[nodiscard]] std::span<const OutletRow> outletTable();
[[nodiscard]] std::span<const ActionRow> actionTable();

// The row of that name, or null.
[[nodiscard]] const OutletRow* outletNamed(std::string_view name);
[[nodiscard]] const ActionRow* actionNamed(std::string_view name);

// Calls the action with the control that was used, null for none. False, and nothing happens, when
// it wants a control of another kind.
bool perform(const ActionRow& action, ViewController& controller, View* sender);

// "label", "imageView", "button", "switch", "slider", "stepper", "pickerView", "meter" or
// "choiceList".
[[nodiscard]] std::string_view nameOf(ViewKind kind);

// The properties of that kind of element: `hidden`, `alpha` and `blinking` of all, `text` of a
// label, `image` of an image view, `enabled` and `backgroundImage` of a button, `on` of a switch,
// `value` of a slider and a stepper, `level` of a meter, `choices` and `chosen` of a choice list.
[[nodiscard]] std::span<const ViewProperty> propertiesOf(ViewKind kind);

}  // namespace endpin
