#include "adapters/sndfile/SoundFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "adapters/sndfile/EncodedReader.h"
#include "adapters/sndfile/RawReader.h"

namespace endpin {
namespace {

using Kind = SoundFileError::Kind;

[[noreturn]] void fail(Kind kind, const std::string& path, const std::string& reason) {
  throw SoundFileError(kind, path + ": " + reason);
}

// The reasons that lie in the file system, told apart before the contents are looked at.
void checkFile(const std::string& path) {
  struct stat status {};
  if (stat(path.c_str(), &status) != 0) {
    const bool missing = errno == ENOENT || errno == ENOTDIR;
    fail(missing ? Kind::Missing : Kind::Unreadable, path,
         missing ? "there is no such file" : std::strerror(errno));
  }
  if (S_ISDIR(status.st_mode)) fail(Kind::Unreadable, path, "is a folder, not a sound file");
  if (access(path.c_str(), R_OK) != 0) {
    fail(Kind::Unreadable, path, std::string("cannot be read: ") + std::strerror(errno));
  }
  if (S_ISREG(status.st_mode) && status.st_size == 0) fail(Kind::Empty, path, "is empty");
}

std::unique_ptr<SoundFile::Reader> makeReader(const std::string& path) {
  if (path.ends_with(".s16")) return std::make_unique<RawReader>(path);
  return std::make_unique<EncodedReader>(path);
}

}  // namespace

SoundFile::SoundFile(const std::string& path) {
  checkFile(path);
  reader_ = makeReader(path);
  if (!reader_->isOpen()) fail(Kind::NotSound, path, "is not a sound file");
  if (reader_->holdsNothing()) fail(Kind::Empty, path, "holds no sound");
}

SoundFile::~SoundFile() = default;
SoundFile::SoundFile(SoundFile&&) noexcept = default;
SoundFile& SoundFile::operator=(SoundFile&&) noexcept = default;

std::uint64_t SoundFile::rateDoubled() const {
  return reader_->rateDoubled();
}

std::size_t SoundFile::read(std::span<std::int16_t> samples) {
  const std::size_t count = reader_->read(samples);
  samplesRead_ += count;
  return count;
}

bool SoundFile::truncated() const {
  return reader_->truncated();
}

}  // namespace endpin
