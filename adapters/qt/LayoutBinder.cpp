#include "adapters/qt/LayoutBinder.h"

#include <fmt/format.h>

#include <QMetaMethod>
#include <QQuickItem>
#include <algorithm>
#include <type_traits>
#include <utility>

namespace endpin {
namespace {

template <class Row>
const Row* rowNamed(std::span<const Row> rows, const std::string& name) {
  const auto found =
      std::find_if(rows.begin(), rows.end(), [&](const Row& row) { return row.name == name; });
  return found == rows.end() ? nullptr : &*found;
}

std::string actionOf(const QQuickItem& item) {
  return item.property("action").toString().toStdString();
}

bool passesOn(const QQuickItem& item, const std::string& action) {
  const auto parts = item.childItems();
  return std::any_of(parts.begin(), parts.end(),
                     [&](const QQuickItem* part) { return actionOf(*part) == action; });
}

}  // namespace

LayoutBinder::LayoutBinder(QQuickItem& root, ViewController& controller, Log& log)
    : controller_(controller), log_(log) {
  bindTree(root);
}

LayoutBinder::~LayoutBinder() {
  for (const OutletName& row : outletNames()) {
    std::visit([this](auto outlet) { (controller_.*outlet).connect(nullptr); }, row.outlet);
  }
}

// Children by way of the visual tree: items that a repeater made have no other parent.
void LayoutBinder::bindTree(QQuickItem& item) {
  bindOutlet(item);
  bindAction(item);
  for (QQuickItem* child : item.childItems()) bindTree(*child);
}

void LayoutBinder::bindOutlet(QQuickItem& item) {
  const OutletName* row = rowNamed(outletNames(), item.objectName().toStdString());
  if (!row) return;
  std::visit([&](auto outlet) { connectOutlet(item, outlet); }, row->outlet);
}

template <class ViewType>
void LayoutBinder::connectOutlet(QQuickItem& item, OutletMember<ViewType> outlet) {
  if ((controller_.*outlet).connected()) return complain(item, "is there twice");
  auto view = std::make_unique<BoundTo<ViewType>>(item);
  view->view().onChange([this, bound = view.get()] { markChanged(*bound); });
  for (const std::string& name : view->missingProperties()) complain(item, "has no " + name);
  (controller_.*outlet).connect(&view->view());
  views_.emplace(&item, std::move(view));
}

// An item may change its action as it goes, so that any item that has one is listened to, and the
// name is looked up when it is used. One that only passes its action on to a part of it does not
// act itself.
void LayoutBinder::bindAction(QQuickItem& item) {
  const std::string action = actionOf(item);
  if (action.empty() || passesOn(item, action)) return;
  if (!rowNamed(actionNames(), action)) complain(item, "has an unknown action, " + action);
  const int signal = item.metaObject()->indexOfSignal("activated()");
  if (signal < 0) return complain(item, "has an action and no signal activated()");
  const int slot = metaObject()->indexOfSlot("onActivated()");
  connect(&item, item.metaObject()->method(signal), this, metaObject()->method(slot));
}

void LayoutBinder::onActivated() {
  auto* item = qobject_cast<QQuickItem*>(sender());
  if (!item) return;
  if (const auto view = views_.find(item); view != views_.end()) view->second->pullUserValue();
  const std::string action = actionOf(*item);
  if (const ActionName* row = rowNamed(actionNames(), action)) {
    call(*row, *item);
  } else {
    complain(*item, "has an unknown action, " + action);
  }
  flush();
}

void LayoutBinder::call(const ActionName& action, QQuickItem& item) {
  std::visit([&](const auto& method) { perform(method, item); }, action.call);
}

void LayoutBinder::perform(void (ViewController::*const& method)(), QQuickItem&) {
  (controller_.*method)();
}

template <class Sender>
void LayoutBinder::perform(void (ViewController::*const& method)(Sender&), QQuickItem& item) {
  if (auto* used = senderFor<std::remove_const_t<Sender>>(item)) {
    (controller_.*method)(*used);
  } else {
    complain(item, "is no control for the action " + actionOf(item));
  }
}

template <class Sender>
Sender* LayoutBinder::senderFor(const QQuickItem& item) {
  const auto found = views_.find(&item);
  if (found == views_.end()) return nullptr;
  auto* bound = dynamic_cast<BoundTo<Sender>*>(found->second.get());
  return bound ? &bound->view() : nullptr;
}

void LayoutBinder::markChanged(BoundView& view) {
  if (changed_.empty())
    QMetaObject::invokeMethod(
        this, [this] { flush(); }, Qt::QueuedConnection);
  if (std::find(changed_.begin(), changed_.end(), &view) == changed_.end()) {
    changed_.push_back(&view);
  }
}

void LayoutBinder::flush() {
  for (BoundView* view : std::exchange(changed_, {})) view->push();
}

void LayoutBinder::complain(const QQuickItem& item, const std::string& what) {
  log_.line(fmt::format("Layout: the item \"{}\" {}.", item.objectName().toStdString(), what));
}

}  // namespace endpin
