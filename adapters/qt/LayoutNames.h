// The names that layouts use for the elements and the actions of the screen, and what each one
// means to the controller. Thread: main.
#pragma once

#include <span>
#include <string_view>
#include <variant>

#include "app/ViewController.h"

namespace endpin {

template <class ViewType>
using OutletMember = Outlet<ViewType> ViewController::*;

// An element: an item whose objectName is `name` becomes the view of that outlet.
struct OutletName {
  std::string_view name;
  std::variant<OutletMember<Label>, OutletMember<ImageView>, OutletMember<Button>,
               OutletMember<Switch>, OutletMember<Slider>, OutletMember<Stepper>,
               OutletMember<PickerView>>
      outlet;
};

// An action of the user. Those that take a control are called with the one that was used.
struct ActionName {
  std::string_view name;
  std::variant<void (ViewController::*)(), void (ViewController::*)(Slider&),
               void (ViewController::*)(const Switch&), void (ViewController::*)(const Stepper&)>
      call;
};

[[nodiscard]] std::span<const OutletName> outletNames();
[[nodiscard]] std::span<const ActionName> actionNames();

}  // namespace endpin
