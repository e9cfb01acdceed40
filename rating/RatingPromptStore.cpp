// Going to the store: the review request, the sheet, or the page by address.
#include "rating/PresenterSearch.h"
#include "rating/RatingPrompt.h"
#include "rating/StorePage.h"

namespace endpin {

void RatingPrompt::rateApp() {
  if (const auto prompt = sharedInstance()) prompt->openStore();
}

// Noted as rated before anything shows: the application may never come back from the store.
void RatingPrompt::openStore() {
  book_.recordRated();
  if (platform_.reviewRequest) {
    platform_.reviewRequest->requestReview();
  } else if (!openInAppStore && platform_.storeSheets) {
    presentStoreSheet();
  } else {
    platform_.urlOpener.openUrl(
        storePageUrl(platform_.device.systemVersion(), settings().appId.value_or("")));
  }
}

void RatingPrompt::presentStoreSheet() {
  const RatingSettings now = settings();
  const auto sheet = platform_.storeSheets->newSheet();
  sheet->loadProduct(integerValue(now.appId.value_or("")));
  sheet->onFinish([opened = weak_from_this()] {
    if (const auto prompt = opened.lock()) prompt->productViewControllerDidFinish();
  });
  tell(&RatingPromptDelegate::ratingPromptWillPresentModalView, this, now.usesAnimation);
  if (auto* presenter = getRootViewController(platform_.windows)) {
    presenter->presentViewController(sheet, now.usesAnimation, [] { setModalOpen(true); });
  }
}

void RatingPrompt::productViewControllerDidFinish() {
  closeModal();
}

void RatingPrompt::closeModal() {
  if (!settings().modalOpen) return;
  if (const auto prompt = sharedInstance()) prompt->dismissStoreSheet();
}

// The end of the sheet is told in the name of the class, unlike its beginning.
void RatingPrompt::dismissStoreSheet() {
  const bool animated = settings().usesAnimation;
  setModalOpen(false);
  const ScreenWindow* window = platform_.windows.keyWindow();
  ScreenController* root = window ? window->rootViewController() : nullptr;
  if (root) {
    topMostViewController(*root)->dismissViewController(
        animated, [closing = weak_from_this(), animated] {
          const auto prompt = closing.lock();
          if (!prompt) return;
          prompt->tell(&RatingPromptDelegate::ratingPromptDidDismissModalView, RatingPromptClass{},
                       animated);
        });
  }
  setStatusBarStyle(0);
}

}  // namespace endpin
