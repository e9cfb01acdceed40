// The platform log: one plain diagnostic line at a time, for whoever looks into a problem.
// Called by every room. Nothing in the product reads it back.
#pragma once

#include <string_view>

namespace endpin {

class Log {
 public:
  virtual ~Log() = default;

  // Writes `text` as one line; the line end is the log's own.
  // Thread: any. Failure to write is ignored.
  virtual void line(std::string_view text) = 0;
};

}  // namespace endpin
