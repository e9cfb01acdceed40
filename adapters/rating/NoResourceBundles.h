// An application whose resources lie in one bundle: the texts of the alert are in the main one, in
// a table of their own. Thread: main.
#pragma once

#include "ports/ResourceBundles.h"

namespace endpin {

class NoResourceBundles final : public ResourceBundles {
 public:
  [[nodiscard]] const Bundle* bundleForResource(std::string_view /*name*/,
                                                std::string_view /*extension*/) override {
    return nullptr;
  }
};

}  // namespace endpin
