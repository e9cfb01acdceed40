// Reads headerless samples: signed 16 bits, little-endian, mono, at the capture rate.
// Thread: one at a time.
#pragma once

#include <cstdio>
#include <memory>
#include <string>

#include "adapters/sndfile/SoundFileReader.h"

namespace endpin {

class RawReader : public SoundFile::Reader {
 public:
  explicit RawReader(const std::string& path) : file_(std::fopen(path.c_str(), "rb")) {}

  [[nodiscard]] bool isOpen() const override { return file_ != nullptr; }
  [[nodiscard]] bool holdsNothing() const override;
  [[nodiscard]] std::uint64_t rateDoubled() const override;
  std::size_t read(std::span<std::int16_t> samples) override;
  // Half a sample at the end, or an error on the way.
  [[nodiscard]] bool truncated() const override { return truncated_; }

 private:
  struct Close {
    void operator()(std::FILE* file) const { std::fclose(file); }
  };

  std::unique_ptr<std::FILE, Close> file_;
  bool truncated_ = false;
};

}  // namespace endpin
