// The elements of the screen as the core sees them: small value objects that a layout reads and
// follows. A layout connects the views that it contains; an outlet that nothing is connected to
// swallows what is done to it. Thread: main.
#pragma once

#include <functional>
#include <string>
#include <utility>

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

// What every element has. A setter that changes something notifies; an animation notifies each time
// it is started.
class View {
 public:
  // A view that belongs to no layout: it keeps nothing.
  struct Nowhere {};

  View() = default;
  explicit View(Nowhere) : keeps_(false) {}

  [[nodiscard]] bool hidden() const { return hidden_; }
  [[nodiscard]] double alpha() const { return alpha_; }
  [[nodiscard]] const ViewAnimation& animation() const { return animation_; }

  void setHidden(bool hidden) { set(hidden_, hidden); }
  void setAlpha(double alpha) { set(alpha_, alpha); }
  // Lets alpha travel to the animation's target; `alpha()` reads the target from now on.
  void animate(const ViewAnimation& animation) {
    if (!keeps_) return;
    animation_ = animation;
    alpha_ = animation.targetAlpha;
    notify();
  }

  // Called after the fact, on the main thread. One observer a view: the screen.
  void onChange(std::function<void()> changed) { changed_ = std::move(changed); }

 protected:
  template <class T>
  void set(T& field, T value) {
    if (!keeps_ || field == value) return;
    field = std::move(value);
    notify();
  }

 private:
  void notify() const {
    if (changed_) changed_();
  }

  bool keeps_ = true;
  bool hidden_ = false;
  double alpha_ = 1;
  ViewAnimation animation_;
  std::function<void()> changed_;
};

class Label : public View {
 public:
  using View::View;
  [[nodiscard]] const std::string& text() const { return text_; }
  void setText(std::string text) { set(text_, std::move(text)); }

 private:
  std::string text_;
};

// Shows the picture resource of that name; the empty name is no picture.
class ImageView : public View {
 public:
  using View::View;
  [[nodiscard]] const std::string& image() const { return image_; }
  void setImage(std::string name) { set(image_, std::move(name)); }

 private:
  std::string image_;
};

class Button : public View {
 public:
  using View::View;
  [[nodiscard]] bool enabled() const { return enabled_; }
  [[nodiscard]] const std::string& backgroundImage() const { return backgroundImage_; }
  void setEnabled(bool enabled) { set(enabled_, enabled); }
  // The picture behind the caption in the normal state; the empty name is none.
  void setBackgroundImage(std::string name) { set(backgroundImage_, std::move(name)); }

 private:
  bool enabled_ = true;
  std::string backgroundImage_;
};

class Switch : public View {
 public:
  using View::View;
  [[nodiscard]] bool isOn() const { return on_; }
  void setOn(bool on) { set(on_, on); }

 private:
  bool on_ = false;
};

// A control with a value: slider and stepper. The screen writes what the user did before it calls
// the action.
class ValueControl : public View {
 public:
  using View::View;
  [[nodiscard]] double value() const { return value_; }
  void setValue(double value) { set(value_, value); }

 private:
  double value_ = 0;
};

class Slider : public ValueControl {
 public:
  using ValueControl::ValueControl;
};

class Stepper : public ValueControl {
 public:
  using ValueControl::ValueControl;
};

// Chooses a row. Nothing drives it.
class PickerView : public View {
 public:
  using View::View;
};

// A place for a view that a layout may or may not fill. Acting on an empty place has no effect and
// reading one gives the blank value: this is the one spot that decides it.
template <class ViewType>
class Outlet {
 public:
  // Does not own the view; the layout keeps it alive as long as it is connected.
  void connect(ViewType* view) { view_ = view; }
  [[nodiscard]] bool connected() const { return view_ != nullptr; }

  ViewType* operator->() const { return view_ ? view_ : &nowhere(); }
  ViewType& operator*() const { return *operator->(); }

 private:
  static ViewType& nowhere() {
    static ViewType view{View::Nowhere{}};
    return view;
  }

  ViewType* view_ = nullptr;
};

}  // namespace endpin
