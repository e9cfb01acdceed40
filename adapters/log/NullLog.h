// A log that keeps nothing. Thread: any.
#pragma once

#include "ports/Log.h"

namespace endpin {

class NullLog : public Log {
 public:
  void line(std::string_view /*text*/) override {}
};

}  // namespace endpin
