// Reads what libsndfile reads, averaging the channels. Thread: one at a time.
#pragma once

#include <sndfile.h>

#include <memory>
#include <string>
#include <vector>

#include "adapters/sndfile/SoundFileReader.h"

namespace endpin {

class EncodedReader : public SoundFile::Reader {
 public:
  explicit EncodedReader(const std::string& path);

  [[nodiscard]] bool isOpen() const override { return file_ != nullptr; }
  [[nodiscard]] bool holdsNothing() const override { return info_.frames == 0; }
  [[nodiscard]] std::uint64_t rateDoubled() const override {
    return 2 * static_cast<std::uint64_t>(info_.samplerate);
  }
  std::size_t read(std::span<std::int16_t> samples) override;
  [[nodiscard]] bool truncated() const override;

 private:
  struct Close {
    void operator()(SNDFILE* file) const { sf_close(file); }
  };

  [[nodiscard]] bool lengthUnknown() const { return info_.frames == SF_COUNT_MAX; }
  [[nodiscard]] bool headerPromisesMore() const;
  [[nodiscard]] int type() const { return info_.format & SF_FORMAT_TYPEMASK; }
  [[nodiscard]] bool isMpeg() const { return type() == SF_FORMAT_MPEG; }

  SF_INFO info_{};
  std::unique_ptr<SNDFILE, Close> file_;
  std::vector<float> frames_;  // interleaved; scratch of read
  sf_count_t framesRead_ = 0;
  bool lengthPromised_ = false;  // the number of frames is a fact of the file, no guess
};

}  // namespace endpin
