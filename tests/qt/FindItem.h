// Finds what a test presses. Thread: main.
#pragma once

#include <QQuickItem>
#include <QTest>
#include <QVariant>

namespace endpin {

// The first visible item of that name or, without one, with that action or panel.
inline QQuickItem* findItem(QQuickItem& item, const QString& wanted) {
  for (const char* property : {"objectName", "action", "panel"}) {
    if (item.property(property) == wanted && item.isVisible()) return &item;
  }
  for (QQuickItem* child : item.childItems()) {
    if (QQuickItem* found = findItem(*child, wanted)) return found;
  }
  return nullptr;
}

}  // namespace endpin
