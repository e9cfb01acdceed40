// Ties a layout to the screen controller: every item whose objectName is that of an element becomes
// the view of that outlet, and every item that has an `action` calls it when it emits
// `activated()`.
//
//   an item that is             has the properties
//   any element                 hidden (bool), alpha (real), blinking (bool)
//   a label                     text
//   an image view               image (name of the picture, empty: none)
//   a button                    enabled, backgroundImage (like image)
//   a switch                    on
//   a slider or a stepper       value
//   anything that acts          action (name), activated(), emitted after on or value is the user's
//
// What the core changes reaches the items once per turn of the event loop, and only where it
// differs from what they show. What is missing or unknown in a layout is logged and left out.
//
// Owns the view objects; the outlets are disconnected when it goes. Thread: main.
#pragma once

#include <QObject>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "adapters/qt/BoundView.h"
#include "adapters/qt/LayoutNames.h"
#include "ports/Log.h"

namespace endpin {

class LayoutBinder final : public QObject {
  Q_OBJECT

 public:
  // Binds `root` and everything in it. All three outlive the binder.
  LayoutBinder(QQuickItem& root, ViewController& controller, Log& log);
  ~LayoutBinder() override;

  // Shows at once what would be shown at the next turn of the event loop.
  void flush();

 private Q_SLOTS:
  void onActivated();

 private:
  void bindTree(QQuickItem& item);
  void bindOutlet(QQuickItem& item);
  void bindAction(QQuickItem& item);
  template <class ViewType>
  void connectOutlet(QQuickItem& item, OutletMember<ViewType> outlet);
  void call(const ActionName& action, QQuickItem& item);
  void perform(void (ViewController::*const& method)(), QQuickItem& item);
  template <class Sender>
  void perform(void (ViewController::*const& method)(Sender&), QQuickItem& item);
  template <class Sender>
  Sender* senderFor(const QQuickItem& item);
  void markChanged(BoundView& view);
  void complain(const QQuickItem& item, const std::string& what);

  ViewController& controller_;
  Log& log_;
  std::map<const QObject*, std::unique_ptr<BoundView>> views_;
  std::vector<BoundView*> changed_;
};

}  // namespace endpin
