#include "adapters/qt/BoundView.h"

#include <QQuickItem>
#include <type_traits>

namespace endpin {
namespace {

QVariant toVariant(const std::string& text) {
  return QString::fromStdString(text);
}

std::string toText(const QVariant& value) {
  return value.toString().toStdString();
}

template <class V>
void addFields(std::vector<ViewField<V>>& fields, const View&) {
  fields.push_back({"hidden", [](const V& v) -> QVariant { return v.hidden(); },
                    [](V& v, const QVariant& value) { v.setHidden(value.toBool()); }});
  fields.push_back({"alpha", [](const V& v) -> QVariant { return v.alpha(); },
                    [](V& v, const QVariant& value) { v.setAlpha(value.toDouble()); }});
  fields.push_back({"blinking", [](const V& v) -> QVariant { return v.animation().repeat; },
                    [](V&, const QVariant&) {}});
}

template <class V>
void addFields(std::vector<ViewField<V>>& fields, const Label&) {
  fields.push_back({"text", [](const V& v) { return toVariant(v.text()); },
                    [](V& v, const QVariant& value) { v.setText(toText(value)); }});
}

template <class V>
void addFields(std::vector<ViewField<V>>& fields, const ImageView&) {
  fields.push_back({"image", [](const V& v) { return toVariant(v.image()); },
                    [](V& v, const QVariant& value) { v.setImage(toText(value)); }});
}

template <class V>
void addFields(std::vector<ViewField<V>>& fields, const Button&) {
  // An item reads as disabled while anything around it is, such as a panel that is closed: what it
  // says of itself is no use as a start.
  fields.push_back(
      {"enabled", [](const V& v) -> QVariant { return v.enabled(); }, [](V&, const QVariant&) {}});
  fields.push_back({"backgroundImage", [](const V& v) { return toVariant(v.backgroundImage()); },
                    [](V& v, const QVariant& value) { v.setBackgroundImage(toText(value)); }});
}

template <class V>
void addFields(std::vector<ViewField<V>>& fields, const Switch&) {
  fields.push_back({"on", [](const V& v) -> QVariant { return v.isOn(); },
                    [](V& v, const QVariant& value) { v.setOn(value.toBool()); }, true});
}

template <class V>
void addFields(std::vector<ViewField<V>>& fields, const ValueControl&) {
  fields.push_back({"value", [](const V& v) -> QVariant { return v.value(); },
                    [](V& v, const QVariant& value) { v.setValue(value.toDouble()); }, true});
}

template <class V>
std::vector<ViewField<V>> fieldsOf(const V& view) {
  std::vector<ViewField<V>> fields;
  addFields<V>(fields, static_cast<const View&>(view));
  if constexpr (!std::is_same_v<V, PickerView>) addFields<V>(fields, view);
  return fields;
}

}  // namespace

template <class ViewType>
BoundTo<ViewType>::BoundTo(QQuickItem& item) : item_(item) {
  const QMetaObject* type = item.metaObject();
  for (const auto& field : fieldsOf(view_)) {
    properties_.push_back({field, type->property(type->indexOfProperty(field.name))});
  }
  pull(false);
}

template <class ViewType>
void BoundTo<ViewType>::push() {
  for (const auto& [field, onItem] : properties_) {
    const QVariant value = field.read(view_);
    if (onItem.isValid() && onItem.read(&item_) != value) onItem.write(&item_, value);
  }
}

template <class ViewType>
void BoundTo<ViewType>::pull(bool onlyUserValue) {
  for (const auto& [field, onItem] : properties_) {
    if (!onItem.isValid() || (onlyUserValue && !field.setByUser)) continue;
    field.write(view_, onItem.read(&item_));
  }
}

template <class ViewType>
std::vector<std::string> BoundTo<ViewType>::missingProperties() const {
  std::vector<std::string> missing;
  for (const auto& [field, onItem] : properties_) {
    if (!onItem.isValid() || !onItem.isWritable()) missing.emplace_back(field.name);
  }
  return missing;
}

template class BoundTo<Label>;
template class BoundTo<ImageView>;
template class BoundTo<Button>;
template class BoundTo<Switch>;
template class BoundTo<Slider>;
template class BoundTo<Stepper>;
template class BoundTo<PickerView>;

}  // namespace endpin
