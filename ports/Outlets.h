// The elements of the screen as the core sees them: small values that a screen shows and follows.
// Each holds its own state, with or without a screen; one that a layout does not contain swallows
// what is done to it and reads blank. Thread: main.
#pragma once

#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <variant>

namespace endpin {

// A change of alpha over time.
struct ViewAnimation {
  double duration = 0;       // seconds from the present alpha to the target
  double delay = 0;          // seconds before it begins
  bool repeat = false;       // begins again without end
  bool autoreverse = false;  // runs back each time
  double targetAlpha = 0;
  bool operator==(const ViewAnimation&) const = default;
};

enum class ViewKind {
  Label,
  ImageView,
  Button,
  Switch,
  Slider,
  Stepper,
  PickerView,
  Meter,
  ChoiceList
};

// What a property of an element holds: a flag, a number or a text.
using ViewValue = std::variant<bool, double, std::string>;

class View;

// A property of an element by name, for screens that are written in another language.
struct ViewProperty {
  std::string_view name;
  ViewValue (*read)(const View&);
  // Takes over what the user did to the element, a value of the kind that `read` gives; null for a
  // property that only the core changes.
  void (*write)(View&, const ViewValue&) = nullptr;
};

// What every element has. A setter that changes something notifies; an animation notifies each time
// it is started.
class View {
 public:
  View(const View&) = delete;
  View& operator=(const View&) = delete;

  [[nodiscard]] ViewKind kind() const { return kind_; }
  [[nodiscard]] bool hidden() const { return seen(hidden_); }
  [[nodiscard]] double alpha() const { return seen(alpha_); }
  [[nodiscard]] const ViewAnimation& animation() const { return seen(animation_); }

  void setHidden(bool hidden) { set(hidden_, hidden); }
  void setAlpha(double alpha) { set(alpha_, alpha); }
  // Lets alpha travel to the animation's target; `alpha()` reads the target from now on.
  void animate(const ViewAnimation& animation) {
    if (!present_) return;
    animation_ = animation;
    alpha_ = animation.targetAlpha;
    notify();
  }

  // Whether the layout contains the element. One that is taken out keeps its state for a layout
  // that contains it again.
  [[nodiscard]] bool present() const { return present_; }
  void setPresent(bool present) { present_ = present; }

  // Called after the fact. One observer a view: the screen. An empty one is none.
  void onChange(std::function<void()> changed) { changed_ = std::move(changed); }

 protected:
  View(ViewKind kind, bool hidden) : kind_(kind), hidden_(hidden) {}
  ~View() = default;

  template <class T>
  [[nodiscard]] const T& seen(const T& field) const {
    static const T blank{};
    return present_ ? field : blank;
  }
  template <class T>
  void set(T& field, T value) {
    if (!present_ || field == value) return;
    field = std::move(value);
    notify();
  }

 private:
  void notify() const {
    if (changed_) changed_();
  }

  const ViewKind kind_;
  bool present_ = true;
  bool hidden_;
  double alpha_ = 1;
  ViewAnimation animation_;
  std::function<void()> changed_;
};

class Label : public View {
 public:
  explicit Label(std::string text = {}, bool hidden = false)
      : View(ViewKind::Label, hidden), text_(std::move(text)) {}
  [[nodiscard]] const std::string& text() const { return seen(text_); }
  void setText(std::string text) { set(text_, std::move(text)); }

 private:
  std::string text_;
};

// Shows the picture resource of that name; the empty name is no picture.
class ImageView : public View {
 public:
  explicit ImageView(std::string image = {}, bool hidden = false)
      : View(ViewKind::ImageView, hidden), image_(std::move(image)) {}
  [[nodiscard]] const std::string& image() const { return seen(image_); }
  void setImage(std::string name) { set(image_, std::move(name)); }

 private:
  std::string image_;
};

class Button : public View {
 public:
  explicit Button(bool enabled = true) : View(ViewKind::Button, false), enabled_(enabled) {}
  [[nodiscard]] bool enabled() const { return seen(enabled_); }
  [[nodiscard]] const std::string& backgroundImage() const { return seen(backgroundImage_); }
  void setEnabled(bool enabled) { set(enabled_, enabled); }
  // The picture behind the caption in the normal state; the empty name is none.
  void setBackgroundImage(std::string name) { set(backgroundImage_, std::move(name)); }

 private:
  bool enabled_;
  std::string backgroundImage_;
};

class Switch : public View {
 public:
  explicit Switch(bool on = false) : View(ViewKind::Switch, false), on_(on) {}
  [[nodiscard]] bool isOn() const { return seen(on_); }
  void setOn(bool on) { set(on_, on); }

 private:
  bool on_;
};

// A control with a value. The screen writes what the user did before it calls the action.
class ValueControl : public View {
 public:
  [[nodiscard]] double value() const { return seen(value_); }
  void setValue(double value) { set(value_, value); }

 protected:
  ValueControl(ViewKind kind, double value) : View(kind, false), value_(value) {}
  ~ValueControl() = default;

 private:
  double value_;
};

class Slider : public ValueControl {
 public:
  explicit Slider(double value = 0) : ValueControl(ViewKind::Slider, value) {}
};

class Stepper : public ValueControl {
 public:
  explicit Stepper(double value = 0) : ValueControl(ViewKind::Stepper, value) {}
};

// Shows how much there is of something, in whole steps from 0.
class Meter : public View {
 public:
  Meter() : View(ViewKind::Meter, false) {}
  [[nodiscard]] double level() const { return seen(level_); }
  void setLevel(double level) { set(level_, level); }

 private:
  double level_ = 0;
};

// One of several, each a line: what it is called and, after a tab, what is to be said of it. The
// screen writes which one the user chose before it calls the action.
class ChoiceList : public View {
 public:
  explicit ChoiceList() : View(ViewKind::ChoiceList, false) {}
  [[nodiscard]] const std::string& choices() const { return seen(choices_); }
  [[nodiscard]] double chosen() const { return seen(chosen_); }  // 0 is the first line
  void setChoices(std::string lines) { set(choices_, std::move(lines)); }
  void setChosen(double line) { set(chosen_, line); }

 private:
  std::string choices_;
  double chosen_ = 0;
};

// Chooses a row. Nothing drives it.
class PickerView : public View {
 public:
  PickerView() : View(ViewKind::PickerView, false) {}
};

}  // namespace endpin
