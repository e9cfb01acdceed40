// Writes a wav file of 16-bit samples that is either whole or not there: it grows under another
// name beside its place and is moved there at the end.
//
// Thread: one at a time.
#pragma once

#include <sndfile.h>

#include <cstdint>
#include <memory>
#include <span>
#include <stdexcept>
#include <string>

namespace endpin {

// Why the file cannot be written. what() is one line that names it.
class WavWriterError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

class WavWriter {
 public:
  // A file that is there already is replaced at the end, and stays what it is until then. `rate` in
  // hertz. Throws WavWriterError, also for what is there and is no file: a folder, a device.
  WavWriter(const std::string& path, int rate, int channels);
  // Leaves nothing behind unless the file has been finished.
  ~WavWriter();
  WavWriter(const WavWriter&) = delete;
  WavWriter& operator=(const WavWriter&) = delete;

  // Interleaved samples of whole frames. Throws WavWriterError.
  void write(std::span<const std::int16_t> samples);

  // Puts the file in its place, safe on the disk. Throws WavWriterError. Nothing may follow.
  void finish();

 private:
  struct Close {
    void operator()(SNDFILE* file) const { sf_close(file); }
  };

  void createBeside();
  [[noreturn]] void fail(const std::string& reason) const;

  const std::string path_;  // as it was given
  std::string place_;       // where it leads
  std::string temporary_;   // empty: nothing to remove
  int descriptor_ = -1;
  std::unique_ptr<SNDFILE, Close> file_;
};

}  // namespace endpin
