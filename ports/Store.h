// The store that the application comes from: its own request for a review, its product page as a
// sheet inside the application, its pages by address. Called by the rating prompt. Thread: main.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "ports/ScreenWindows.h"

namespace endpin {

class ReviewRequest {
 public:
  virtual ~ReviewRequest() = default;

  // Asks the platform to ask for a review. The platform decides whether anything is shown and does
  // not tell.
  virtual void requestReview() = 0;
};

class StoreSheet : public ScreenController {
 public:
  // Loads the page of a product; the sheet may be presented meanwhile. A failure shows in the
  // sheet.
  virtual void loadProduct(std::int64_t storeIdentifier) = 0;

  // `finished` runs on the main thread when the user wants to leave the sheet, which stays until it
  // is dismissed.
  virtual void onFinish(std::function<void()> finished) = 0;
};

class StoreSheets {
 public:
  virtual ~StoreSheets() = default;
  virtual std::shared_ptr<StoreSheet> newSheet() = 0;
};

class UrlOpener {
 public:
  virtual ~UrlOpener() = default;

  // Hands the address to whichever program is in charge of its scheme and returns at once. The
  // scheme "itms-apps" means this application's page in a store; a platform with another store
  // opens its own page of this application. An address that nothing opens is logged,
  // and the user is told.
  virtual void openUrl(const std::string& url) = 0;
};

}  // namespace endpin
