// An alert for the dialog of the layout: its words and what its buttons do.
// Thread: main, but for viewHasSuperview (any).
#pragma once

#include <QStringList>
#include <atomic>
#include <string>
#include <vector>

#include "ports/Alerts.h"

namespace endpin {

class LayoutDialog;

class DialogAlert final : public ModernAlert {
 public:
  // `dialog` outlives the alert.
  DialogAlert(LayoutDialog& dialog, std::string title, std::string message);

  void addAction(const std::string& title, AlertActionStyle style, Handler handler) override;
  [[nodiscard]] bool viewHasSuperview() const override { return onScreen_; }

  // An alert presents nothing over itself: what it is asked to present takes its place.
  [[nodiscard]] ScreenController* presentedViewController() const override { return nullptr; }
  void presentViewController(std::shared_ptr<ScreenController> controller, bool animated,
                             Completion completion) override;
  void dismissViewController(bool animated, Completion completion) override;

  [[nodiscard]] const std::string& title() const { return title_; }
  [[nodiscard]] const std::string& message() const { return message_; }
  [[nodiscard]] QStringList buttons() const;

  // What the dialog reports.
  void setOnScreen(bool onScreen) { onScreen_ = onScreen; }
  void press(std::size_t button) const;

 private:
  struct Action {
    std::string title;
    Handler handler;
  };

  LayoutDialog& dialog_;
  const std::string title_;
  const std::string message_;
  std::vector<Action> actions_;
  std::atomic<bool> onScreen_ = false;
};

}  // namespace endpin
