// The platform log on an open stream, such as standard error: a line at a time, whole, also when
// several threads write. Thread: any.
#pragma once

#include <cstdio>
#include <mutex>
#include <string_view>

#include "ports/Log.h"

namespace endpin {

class StreamLog : public Log {
 public:
  // Does not own the stream; it outlives the log.
  explicit StreamLog(std::FILE* stream) : stream_(stream) {}

  void line(std::string_view text) override {
    const std::lock_guard lock(mutex_);
    std::fwrite(text.data(), 1, text.size(), stream_);
    std::fputc('\n', stream_);
    std::fflush(stream_);
  }

 private:
  std::mutex mutex_;
  std::FILE* stream_;
};

// A log that nobody reads.
class NullLog : public Log {
 public:
  void line(std::string_view /*text*/) override {}
};

}  // namespace endpin
