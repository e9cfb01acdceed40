// The screen as the rating prompt sees it: one window at the normal level, with one view whose
// controller presents alerts as the dialog of the layout. Thread: main.
#pragma once

#include "adapters/rating/LayoutDialog.h"
#include "ports/Alerts.h"
#include "ports/ScreenWindows.h"

namespace endpin {

class DialogScreen final : public ScreenWindows, public ModernAlerts {
 public:
  // Both outlive the screen, which outlives its alerts.
  DialogScreen(QQuickWindow& window, Log& log) : dialog_(window, log) {}
  DialogScreen(const DialogScreen&) = delete;
  DialogScreen& operator=(const DialogScreen&) = delete;

  [[nodiscard]] ScreenWindow* keyWindow() const override { return &window_; }
  [[nodiscard]] std::vector<ScreenWindow*> windows() const override { return {&window_}; }

  std::shared_ptr<ModernAlert> newAlert(const std::string& title, const std::string& message,
                                        AlertControllerStyle style) override;

 private:
  struct Root final : ScreenController {
    explicit Root(LayoutDialog& ownDialog) : dialog(ownDialog) {}
    [[nodiscard]] ScreenController* presentedViewController() const override;
    void presentViewController(std::shared_ptr<ScreenController> controller, bool animated,
                               Completion completion) override;
    void dismissViewController(bool animated, Completion completion) override;
    LayoutDialog& dialog;
  };
  struct View final : ScreenView {
    explicit View(Root& ownRoot) : root(ownRoot) {}
    [[nodiscard]] std::vector<ScreenView*> subviews() const override { return {}; }
    [[nodiscard]] ScreenController* nextResponderViewController() const override { return &root; }
    Root& root;
  };
  struct Window final : ScreenWindow {
    explicit Window(View& ownView) : view(ownView) {}
    [[nodiscard]] std::vector<ScreenView*> subviews() const override { return {&view}; }
    [[nodiscard]] ScreenController* nextResponderViewController() const override { return nullptr; }
    [[nodiscard]] double windowLevel() const override { return kNormalLevel; }
    [[nodiscard]] ScreenController* rootViewController() const override { return &view.root; }
    View& view;
  };

  LayoutDialog dialog_;
  Root root_{dialog_};
  View view_{root_};
  mutable Window window_{view_};  // who looks for a window may present from it
};

}  // namespace endpin
