// Going to the store: the review request, the sheet, or the page by address.
#include <string_view>

#include "ports/TypedStore.h"
#include "rating/RatingPrompt.h"

namespace endpin {
namespace {

constexpr std::string_view kPlaceholder = "APP_ID";

struct Template {
  float fromVersion;
  const char* host;
  const char* pathAndQuery;
};

// The last row that the version reaches counts.
constexpr Template kTemplates[] = {
    {0.0F, kStoreReviewHost,
     "/WebObjects/MZStore.woa/wa/viewContentsUserReviews?type=Purple+Software&id=APP_ID"},
    {7.0F, kStoreHost, "/app/idAPP_ID"},
    {8.0F, kStoreHost,
     "/WebObjects/MZStore.woa/wa/viewContentsUserReviews?id=APP_ID&onlyLatestVersion=true"
     "&pageNumber=0&sortOrdering=1&type=Purple+Software"},
};

// Platforms before 7, from 7 and from 8 on each want another page.
std::string storePageUrl(const std::string& systemVersion, const std::string& appId) {
  const auto version = leadingNumber<float>(systemVersion);
  const Template* wanted = &kTemplates[0];
  for (const Template& row : kTemplates) {
    if (version >= row.fromVersion) wanted = &row;
  }
  std::string path = wanted->pathAndQuery;
  path.replace(path.find(kPlaceholder), kPlaceholder.size(), appId);
  return std::string("itms-apps://") + wanted->host + path;
}

}  // namespace

void RatingPrompt::rateApp() {
  if (const auto prompt = sharedInstance()) prompt->openStore();
}

// Noted as rated before anything shows: the application may never come back from the store.
void RatingPrompt::openStore() {
  tracker_.recordRated();
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
  sheet->loadProduct(leadingNumber<std::int64_t>(now.appId.value_or("")));
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
