// Keeps what it was told. Thread: any.
#pragma once

#include <mutex>
#include <string>
#include <vector>

#include "ports/Log.h"

namespace endpin {

struct RecordingLog final : Log {
  void line(std::string_view text) override {
    const std::lock_guard lock(mutex);
    lines.emplace_back(text);
  }
  std::mutex mutex;
  std::vector<std::string> lines;
};

}  // namespace endpin
