// One element of the screen: the view object that the core acts on, tied to the item of the layout
// that shows it. Thread: main.
#pragma once

#include <QMetaProperty>
#include <QVariant>
#include <string>
#include <vector>

#include "ports/Outlets.h"

class QQuickItem;

namespace endpin {

// A property of an item and the part of a view object that it shows.
template <class ViewType>
struct ViewField {
  const char* name;
  QVariant (*read)(const ViewType&);
  void (*write)(ViewType&, const QVariant&);
  bool setByUser = false;
};

class BoundView {
 public:
  virtual ~BoundView() = default;

  // Brings what the item shows into line with the view object; what is equal is not touched.
  virtual void push() = 0;
  // Takes over what the user did to the item.
  virtual void pullUserValue() = 0;
  // Names of the properties that the item ought to have and has not.
  [[nodiscard]] virtual std::vector<std::string> missingProperties() const = 0;
};

template <class ViewType>
class BoundTo final : public BoundView {
 public:
  // The view object starts with what the item shows. `item` outlives this.
  explicit BoundTo(QQuickItem& item);

  void push() override;
  void pullUserValue() override { pull(true); }
  [[nodiscard]] std::vector<std::string> missingProperties() const override;

  ViewType& view() { return view_; }

 private:
  struct Property {
    ViewField<ViewType> field;
    QMetaProperty onItem;
  };
  void pull(bool onlyUserValue);

  QQuickItem& item_;
  ViewType view_;
  std::vector<Property> properties_;
};

}  // namespace endpin
