#include "adapters/rating/DialogAlert.h"

#include <utility>

#include "adapters/rating/LayoutDialog.h"

namespace endpin {

DialogAlert::DialogAlert(LayoutDialog& dialog, std::string title, std::string message)
    : dialog_(dialog), title_(std::move(title)), message_(std::move(message)) {}

// The dialog draws its buttons by their places; the last one is the cancel button.
void DialogAlert::addAction(const std::string& title, AlertActionStyle /*style*/, Handler handler) {
  actions_.push_back({title, std::move(handler)});
}

void DialogAlert::presentViewController(std::shared_ptr<ScreenController> controller,
                                        bool /*animated*/, Completion completion) {
  dialog_.present(controller, completion);
}

void DialogAlert::dismissViewController(bool /*animated*/, Completion completion) {
  dialog_.dismiss(*this, std::move(completion));
}

QStringList DialogAlert::buttons() const {
  QStringList titles;
  for (const Action& action : actions_) titles.append(QString::fromStdString(action.title));
  return titles;
}

void DialogAlert::press(std::size_t button) const {
  if (button < actions_.size()) actions_[button].handler(actions_[button].title);
}

}  // namespace endpin
