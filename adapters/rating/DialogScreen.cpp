#include "adapters/rating/DialogScreen.h"

#include <utility>

namespace endpin {

std::shared_ptr<ModernAlert> DialogScreen::newAlert(const std::string& title,
                                                    const std::string& message,
                                                    AlertControllerStyle /*style*/) {
  return std::make_shared<DialogAlert>(dialog_, title, message);
}

ScreenController* DialogScreen::Root::presentedViewController() const {
  return dialog.shown();
}

void DialogScreen::Root::presentViewController(std::shared_ptr<ScreenController> controller,
                                               bool /*animated*/, Completion completion) {
  dialog.present(controller, completion);
}

// Nothing presents the root, so that it stays.
void DialogScreen::Root::dismissViewController(bool /*animated*/, Completion completion) {
  dialog.runLater(std::move(completion));
}

}  // namespace endpin
