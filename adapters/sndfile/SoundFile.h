// A sound file, read in order, chunk by chunk, as one channel of 16-bit samples at its own rate:
// whatever libsndfile reads (wav, flac, ogg, mp3, aiff …), of any rate and number of channels, or a
// file ending in ".s16", which is headerless: signed 16 bits, little-endian, mono, at the capture
// rate. A file of hours is never held as a whole.
//
// Thread: one at a time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <stdexcept>
#include <string>

namespace endpin {

// Why a file cannot be used. what() is one line that names the file.
class SoundFileError : public std::runtime_error {
 public:
  enum class Kind {
    Missing,     // there is no such file
    Unreadable,  // a folder, or not ours to read
    NotSound,    // no format that we know, or damaged before the sound begins
    Empty,       // it holds no sample
  };

  SoundFileError(Kind kind, const std::string& message)
      : std::runtime_error(message), kind_(kind) {}
  [[nodiscard]] Kind kind() const { return kind_; }

 private:
  Kind kind_;
};

class SoundFile {
 public:
  // Throws SoundFileError.
  explicit SoundFile(const std::string& path);
  ~SoundFile();
  SoundFile(SoundFile&&) noexcept;
  SoundFile& operator=(SoundFile&&) noexcept;

  // Samples in two seconds: twice the rate, which is a whole number for the capture rate too.
  [[nodiscard]] std::uint64_t rateDoubled() const;
  [[nodiscard]] double rate() const { return static_cast<double>(rateDoubled()) / 2; }

  // Reads the next samples and returns how many; 0 at the end. Channels are averaged; what lies
  // outside full scale is clipped, what is no number becomes 0.
  std::size_t read(std::span<std::int16_t> samples);

  // Samples read so far.
  [[nodiscard]] std::uint64_t samplesRead() const { return samplesRead_; }

  // Whether the file holds less than it promises, or its sound breaks off. Known once read() has
  // returned 0.
  [[nodiscard]] bool truncated() const;

  // A way of reading: one for libsndfile, one for headerless files.
  class Reader;

 private:
  std::unique_ptr<Reader> reader_;
  std::uint64_t samplesRead_ = 0;
};

}  // namespace endpin
