#include "adapters/sndfile/EncodedReader.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <optional>
#include <string_view>

#include "adapters/posix/MutedStandardError.h"

namespace endpin {
namespace {

constexpr std::size_t kFramesAtATime = 4096;

// Mean of one frame as a 16-bit sample.
std::int16_t sampleOf(std::span<const float> frame) {
  double sum = 0;
  for (const float value : frame) sum += static_cast<double>(value);
  const double scaled = std::round(sum / static_cast<double>(frame.size()) * 32768.0);
  if (std::isnan(scaled)) return 0;
  return static_cast<std::int16_t>(std::clamp(scaled, -32768.0, 32767.0));
}

// Whether a line of libsndfile's log such as "data : 384000 (should be 230383)" says that the sound
// was meant to be longer. Sizes near the limits stand for a length that the writer did not know.
bool saysCutShort(std::string_view line) {
  constexpr std::array<std::string_view, 4> kNames = {"data", "SSND", "Data Size", "riff"};
  constexpr unsigned long long kUnknownFrom = 0x7fff0000;
  line.remove_prefix(std::min(line.find_first_not_of(' '), line.size()));
  const bool named = std::any_of(kNames.begin(), kNames.end(),
                                 [&](std::string_view name) { return line.starts_with(name); });
  constexpr std::string_view kShould = "(should be ";
  const auto colon = line.find(':');
  const auto should = line.find(kShould);
  if (!named || colon == line.npos || should == line.npos) return false;
  const std::string text(line);
  const auto promised = std::strtoull(text.c_str() + colon + 1, nullptr, 10);
  const auto held = std::strtoull(text.c_str() + should + kShould.size(), nullptr, 10);
  return promised > held && promised < kUnknownFrom;
}

// Whether an mpeg file tells its length in a first frame of its own; elsewhere the length is a
// guess from the bit rate.
bool mpegTellsLength(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  std::array<char, 64> head{};
  file.read(head.data(), 10);
  std::streamoff first = 0;
  if (std::string_view(head.data(), 3) == "ID3") {
    for (std::size_t i = 6; i < 10; ++i) first = first << 7 | (head[i] & 0x7f);
    first += 10;
  }
  file.seekg(first).read(head.data(), head.size());
  const std::string_view frame(head.data(), head.size());
  return frame.find("Xing") != frame.npos || frame.find("Info") != frame.npos;
}

}  // namespace

EncodedReader::EncodedReader(const std::string& path) {
  const MutedStandardError muted;  // the mpeg decoder underneath talks
  file_.reset(sf_open(path.c_str(), SFM_READ, &info_));
  if (file_) frames_.resize(kFramesAtATime * static_cast<std::size_t>(info_.channels));
  lengthPromised_ = !lengthUnknown() && (!isMpeg() || mpegTellsLength(path));
}

std::size_t EncodedReader::read(std::span<std::int16_t> samples) {
  std::optional<MutedStandardError> muted;
  if (isMpeg()) muted.emplace();
  const auto channels = static_cast<std::size_t>(info_.channels);
  std::size_t count = 0;
  while (count < samples.size()) {
    const std::size_t wanted = std::min(samples.size() - count, kFramesAtATime);
    const sf_count_t got =
        sf_readf_float(file_.get(), frames_.data(), static_cast<sf_count_t>(wanted));
    if (got <= 0) break;
    for (std::size_t i = 0; i < static_cast<std::size_t>(got); ++i) {
      samples[count++] = sampleOf(std::span(frames_).subspan(i * channels, channels));
    }
    framesRead_ += got;
  }
  return count;
}

// An ogg file without its last page has no length; elsewhere the decoder finds less than the header
// told, or the header did not believe itself.
bool EncodedReader::truncated() const {
  if (lengthUnknown()) return type() == SF_FORMAT_OGG;
  return (lengthPromised_ && framesRead_ < info_.frames) || headerPromisesMore();
}

bool EncodedReader::headerPromisesMore() const {
  std::array<char, 4096> log{};
  sf_command(file_.get(), SFC_GET_LOG_INFO, log.data(), static_cast<int>(log.size()));
  std::string_view rest(log.data());
  if (rest.find("does not match value from 'ds64'") != rest.npos) return true;
  while (!rest.empty()) {
    const auto end = std::min(rest.find('\n'), rest.size());
    if (saysCutShort(rest.substr(0, end))) return true;
    rest.remove_prefix(std::min(end + 1, rest.size()));
  }
  return false;
}

}  // namespace endpin
