#include "web/ScreenBridge.h"

#include <fmt/format.h>

#include <span>

#include "adapters/web/Host.h"
#include "ports/TypedStore.h"

namespace endpin {
namespace {

struct AsText {
  std::string operator()(bool flag) const { return flag ? "true" : "false"; }
  std::string operator()(double number) const { return fmt::format("{}", number); }
  std::string operator()(const std::string& text) const { return text; }
};

// What the page wrote, in the type of `example`.
ViewValue likeValue(const ViewValue& example, std::string_view text) {
  if (std::holds_alternative<bool>(example)) return text == "true";
  if (std::holds_alternative<double>(example)) return leadingNumber<double>(text);
  return std::string(text);
}

void takeOver(View& view, std::string_view value) {
  for (const ViewProperty& property : propertiesOf(view.kind())) {
    if (property.write) property.write(view, likeValue(property.read(view), value));
  }
}

void announceActions() {
  for (const ActionRow& row : actionTable()) {
    const std::string_view sender = row.sender ? nameOf(*row.sender) : "";
    host::actionExists(row.name.data(), row.name.size(), sender.data(), sender.size());
  }
}

}  // namespace

ScreenBridge::ScreenBridge(ViewController& controller) : controller_(controller) {
  for (const OutletRow& row : outletTable()) {
    View& view = row.of(controller);
    elements_.push_back({.row = &row, .view = &view, .told = {}});
    const std::string_view kind = nameOf(view.kind());
    host::outletExists(row.name.data(), row.name.size(), kind.data(), kind.size());
  }
  for (Element& element : elements_) {  // they stay where they are from now on
    element.view->onChange([&element] { element.changed = true; });
  }
  announceActions();
}

ScreenBridge::~ScreenBridge() {
  for (Element& element : elements_) element.view->onChange({});
}

void ScreenBridge::push() {
  for (Element& element : elements_) {
    if (element.changed) push(element);
    element.changed = false;
  }
}

void ScreenBridge::push(Element& element) {
  const std::span<const ViewProperty> properties = propertiesOf(element.view->kind());
  const bool first = element.told.empty();
  element.told.resize(properties.size());
  for (std::size_t i = 0; i < properties.size(); ++i) {
    ViewValue value = properties[i].read(*element.view);
    if (!first && value == element.told[i]) continue;
    const std::string text = std::visit(AsText{}, value);
    host::outletChanged(element.row->name.data(), element.row->name.size(),
                        properties[i].name.data(), properties[i].name.size(),
                        static_cast<std::uint32_t>(value.index()), text.data(), text.size());
    element.told[i] = std::move(value);
  }
}

bool ScreenBridge::perform(std::string_view action, std::string_view sender,
                           std::string_view value) {
  const ActionRow* row = actionNamed(action);
  const OutletRow* outlet = outletNamed(sender);
  if (!row || (!outlet && !sender.empty())) return false;
  View* view = outlet ? &outlet->of(controller_) : nullptr;
  if (row->sender && (!view || view->kind() != *row->sender)) return false;
  if (view && !value.empty()) takeOver(*view, value);
  return endpin::perform(*row, controller_, view);
}

}  // namespace endpin
