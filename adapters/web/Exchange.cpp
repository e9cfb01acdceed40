#include "adapters/web/Exchange.h"

#include <algorithm>
#include <vector>

namespace endpin {
namespace {

std::vector<char>& buffer() {
  static std::vector<char> bytes(256);
  return bytes;
}

}  // namespace

char* exchangeBuffer(std::size_t size) {
  buffer().resize(std::max(size, buffer().size()));
  return buffer().data();
}

std::optional<std::string> exchangedText(std::int32_t length, std::size_t offset) {
  if (length < 0) return std::nullopt;
  return std::string(buffer().data() + offset, static_cast<std::size_t>(length));
}

}  // namespace endpin
