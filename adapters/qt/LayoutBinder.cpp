#include "adapters/qt/LayoutBinder.h"

#include <fmt/format.h>

#include <QMetaMethod>
#include <QQuickItem>
#include <QVariant>
#include <algorithm>

namespace endpin {
namespace {

std::string actionOf(const QQuickItem& item) {
  return item.property("action").toString().toStdString();
}

bool passesOn(const QQuickItem& item, const std::string& action) {
  const auto parts = item.childItems();
  return std::any_of(parts.begin(), parts.end(),
                     [&](const QQuickItem* part) { return actionOf(*part) == action; });
}

struct ToVariant {
  QVariant operator()(bool flag) const { return flag; }
  QVariant operator()(double number) const { return number; }
  QVariant operator()(const std::string& text) const { return QString::fromStdString(text); }
};

// What `value` holds, in the type of `example`.
ViewValue likeValue(const ViewValue& example, const QVariant& value) {
  if (std::holds_alternative<bool>(example)) return value.toBool();
  if (std::holds_alternative<double>(example)) return value.toDouble();
  return value.toString().toStdString();
}

}  // namespace

LayoutBinder::LayoutBinder(QQuickItem& root, ViewController& controller, Log& log)
    : controller_(controller), log_(log) {
  takeAllOut();
  bindTree(root);
}

LayoutBinder::~LayoutBinder() {
  takeAllOut();
}

void LayoutBinder::takeAllOut() {
  for (const OutletRow& row : outletTable()) {
    View& view = row.of(controller_);
    view.onChange({});
    view.setPresent(false);
  }
}

// Children by way of the visual tree: items that a repeater made have no other parent.
void LayoutBinder::bindTree(QQuickItem& item) {
  bindOutlet(item);
  bindAction(item);
  for (QQuickItem* child : item.childItems()) bindTree(*child);
}

void LayoutBinder::bindOutlet(QQuickItem& item) {
  const OutletRow* row = outletNamed(item.objectName().toStdString());
  if (!row) return;
  View& view = row->of(controller_);
  if (view.present()) return complain(item, "is there twice");
  view.setPresent(true);
  BoundItem& bound = bound_[&item];
  bound.view = &view;
  bindProperties(item, bound);
  push(item);
  view.onChange([this, &item] { markChanged(item); });
}

void LayoutBinder::bindProperties(QQuickItem& item, BoundItem& bound) {
  const QMetaObject* type = item.metaObject();
  for (const ViewProperty& property : propertiesOf(bound.view->kind())) {
    const std::string name(property.name);
    const QMetaProperty onItem = type->property(type->indexOfProperty(name.c_str()));
    if (onItem.isValid() && onItem.isWritable()) {
      bound.properties.emplace_back(&property, onItem);
    } else {
      complain(item, "has no " + name);
    }
  }
}

// An item may change its action as it goes, so that any item that has one is listened to, and the
// name is looked up when it is used. One that only passes its action on to a part of it does not
// act itself.
void LayoutBinder::bindAction(QQuickItem& item) {
  const std::string action = actionOf(item);
  if (action.empty() || passesOn(item, action)) return;
  if (!actionNamed(action)) complain(item, "has an unknown action, " + action);
  const int signal = item.metaObject()->indexOfSignal("activated()");
  if (signal < 0) return complain(item, "has an action and no signal activated()");
  const int slot = metaObject()->indexOfSlot("onActivated()");
  connect(&item, item.metaObject()->method(signal), this, metaObject()->method(slot));
}

void LayoutBinder::onActivated() {
  auto* item = qobject_cast<QQuickItem*>(sender());
  if (!item) return;
  View* used = takeOverUserValue(*item);
  const std::string action = actionOf(*item);
  const ActionRow* row = actionNamed(action);
  if (!row) {
    complain(*item, "has an unknown action, " + action);
  } else if (!perform(*row, controller_, used)) {
    complain(*item, "is no control for the action " + action);
  }
  flush();
}

View* LayoutBinder::takeOverUserValue(QQuickItem& item) {
  const auto found = bound_.find(&item);
  if (found == bound_.end()) return nullptr;
  View& view = *found->second.view;
  for (const auto& [property, onItem] : found->second.properties) {
    if (property->write) property->write(view, likeValue(property->read(view), onItem.read(&item)));
  }
  return &view;
}

// Whatever the item shows now: one in a panel that is shut off reads as not enabled, and would stay
// enabled for the time when the panel opens.
void LayoutBinder::push(QQuickItem& item) {
  const BoundItem& bound = bound_.at(&item);
  for (const auto& [property, onItem] : bound.properties) {
    onItem.write(&item, std::visit(ToVariant{}, property->read(*bound.view)));
  }
}

void LayoutBinder::markChanged(QQuickItem& item) {
  if (changed_.empty()) {
    QMetaObject::invokeMethod(
        this, [this] { flush(); }, Qt::QueuedConnection);
  }
  if (std::find(changed_.begin(), changed_.end(), &item) == changed_.end()) {
    changed_.push_back(&item);
  }
}

void LayoutBinder::flush() {
  for (QQuickItem* item : std::exchange(changed_, {})) push(*item);
}

void LayoutBinder::complain(const QQuickItem& item, const std::string& what) {
  log_.line(fmt::format("Layout: the item \"{}\" {}.", item.objectName().toStdString(), what));
}

}  // namespace endpin
