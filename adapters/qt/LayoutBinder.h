// Ties a layout to the screen controller: every item whose objectName is that of an element shows
// that element, and every item that has an `action` calls it when it emits `activated()`.
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
// differs from what they show. What is missing or unknown in a layout is logged and left out;
// elements without an item are absent as long as the binder lives, and all of them after it.
//
// Thread: main.
#pragma once

#include <QMetaProperty>
#include <QObject>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "app/ScreenTable.h"
#include "ports/Log.h"

class QQuickItem;

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
  // An element and the item that shows it.
  struct BoundItem {
    View* view = nullptr;
    std::vector<std::pair<const ViewProperty*, QMetaProperty>> properties;
  };

  void takeAllOut();
  void bindTree(QQuickItem& item);
  void bindOutlet(QQuickItem& item);
  void bindProperties(QQuickItem& item, BoundItem& bound);
  void bindAction(QQuickItem& item);
  void push(QQuickItem& item);
  View* takeOverUserValue(QQuickItem& item);
  void markChanged(QQuickItem& item);
  void complain(const QQuickItem& item, const std::string& what);

  ViewController& controller_;
  Log& log_;
  std::map<const QObject*, BoundItem> bound_;
  std::vector<QQuickItem*> changed_;
};

}  // namespace endpin
