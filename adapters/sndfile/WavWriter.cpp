#include "adapters/sndfile/WavWriter.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>

namespace endpin {
namespace {

constexpr int kMostNames = 100;  // to try

// A link is followed: what it leads to is replaced, not the link.
std::string placeOf(const std::string& path) {
  std::error_code error;
  const auto place = std::filesystem::canonical(path, error);
  return error ? path : place.string();
}

}  // namespace

WavWriter::WavWriter(const std::string& path, int rate, int channels)
    : path_(path), place_(placeOf(path)) {
  struct stat status {};
  if (stat(path.c_str(), &status) == 0 && !S_ISREG(status.st_mode)) {
    fail(S_ISDIR(status.st_mode) ? "is a folder" : "is no ordinary file");
  }
  createBeside();
  SF_INFO info{};
  info.samplerate = rate;
  info.channels = channels;
  info.format = SF_FORMAT_WAV | SF_FORMAT_PCM_16;
  file_.reset(sf_open_fd(descriptor_, SFM_WRITE, &info, SF_FALSE));
  if (!file_) fail(sf_strerror(nullptr));
}

WavWriter::~WavWriter() {
  file_.reset();
  if (descriptor_ >= 0) close(descriptor_);
  if (!temporary_.empty()) unlink(temporary_.c_str());
}

// A name that nobody uses: another run may be writing the same file.
void WavWriter::createBeside() {
  for (int i = 0; i < kMostNames && descriptor_ < 0; ++i) {
    const std::string name = place_ + ".part" + std::to_string(i);
    descriptor_ = open(name.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (descriptor_ >= 0) temporary_ = name;
    if (descriptor_ < 0 && errno != EEXIST) break;
  }
  if (descriptor_ < 0) fail(std::strerror(errno));
}

void WavWriter::write(std::span<const std::int16_t> samples) {
  const auto count = static_cast<sf_count_t>(samples.size());
  errno = 0;
  if (sf_write_short(file_.get(), samples.data(), count) == count) return;
  fail(errno != 0 ? std::strerror(errno) : sf_strerror(file_.get()));
}

void WavWriter::finish() {
  const bool complete = sf_close(file_.release()) == 0;
  if (!complete || fsync(descriptor_) != 0) fail(std::strerror(errno));
  if (std::rename(temporary_.c_str(), place_.c_str()) != 0) fail(std::strerror(errno));
  temporary_.clear();
}

void WavWriter::fail(const std::string& reason) const {
  throw WavWriterError(path_ + ": cannot be written: " + reason);
}

}  // namespace endpin
