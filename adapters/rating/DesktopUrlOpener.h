// Opens addresses with the desktop's handler for their scheme. The store that this application
// comes from is the desktop's software centre, which knows it by the name of its desktop file.
//
// Thread: main. What the handler makes of the address is its own business: only that there is none
// at all is noticed.
#pragma once

#include "ports/Log.h"
#include "ports/Store.h"

namespace endpin {

class DesktopUrlOpener final : public UrlOpener {
 public:
  // `log` outlives the opener.
  explicit DesktopUrlOpener(Log& log) : log_(log) {}

  void openUrl(const std::string& url) override;

 private:
  Log& log_;
};

}  // namespace endpin
