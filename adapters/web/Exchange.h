// The one buffer through which texts come in from the page. Thread: main.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace endpin {

// Where the page writes `size` bytes. What was there is lost. Valid until the next call.
char* exchangeBuffer(std::size_t size);

// The text of that length that the page has written, of which `offset` bytes are left out; nothing
// for a negative length.
[[nodiscard]] std::optional<std::string> exchangedText(std::int32_t length, std::size_t offset = 0);

}  // namespace endpin
