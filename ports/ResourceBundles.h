// Bundles inside the application's own one. Called by the rating prompt. Thread: main.
#pragma once

#include <string_view>

#include "ports/Bundle.h"

namespace endpin {

class ResourceBundles {
 public:
  virtual ~ResourceBundles() = default;

  // The resource NAME.EXTENSION of the application, opened as a bundle and owned by this port; null
  // when there is none.
  [[nodiscard]] virtual const Bundle* bundleForResource(std::string_view name,
                                                        std::string_view extension) = 0;
};

}  // namespace endpin
