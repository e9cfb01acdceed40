// The one buffer through which texts come in from the page. Thread: main.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace endpin {

inline std::vector<char>& exchangeBytes() {
  static std::vector<char> bytes(256);
  return bytes;
}

// Where the page writes `size` bytes. What was there is lost. Valid until the next call.
inline char* exchangeBuffer(std::size_t size) {
  exchangeBytes().resize(std::max(size, exchangeBytes().size()));
  return exchangeBytes().data();
}

// The text of that length that the page has written, of which `offset` bytes are left out; nothing
// for a negative length.
[[nodiscard]] inline std::optional<std::string> exchangedText(std::int32_t length,
                                                              std::size_t offset = 0) {
  if (length < 0) return std::nullopt;
  return std::string(exchangeBytes().data() + offset, static_cast<std::size_t>(length));
}

}  // namespace endpin
