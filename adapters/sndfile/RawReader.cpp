#include "adapters/sndfile/RawReader.h"

#include <array>

#include "audio/CaptureFormat.h"

namespace endpin {

// An empty file was turned away before.
bool RawReader::holdsNothing() const {
  return false;
}

std::uint64_t RawReader::rateDoubled() const {
  return kCaptureRateDoubled;
}

std::size_t RawReader::read(std::span<std::int16_t> samples) {
  std::size_t count = 0;
  std::array<unsigned char, 2> bytes{};
  while (count < samples.size()) {
    const std::size_t got = std::fread(bytes.data(), 1, bytes.size(), file_.get());
    if (got < bytes.size()) {
      truncated_ = truncated_ || got == 1 || std::ferror(file_.get()) != 0;
      break;
    }
    const unsigned pattern = bytes[0] | static_cast<unsigned>(bytes[1]) << 8U;
    samples[count++] = static_cast<std::int16_t>(pattern);
  }
  return count;
}

}  // namespace endpin
