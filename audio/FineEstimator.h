// A second estimator, beside the default one: it turns the same block of samples into a pitch that
// lies between the bins. It looks for the series of partials that explains the lines of the
// spectrum best, and averages the pitches that the partials speak for. Hence it hears a string
// whose lowest partials a small microphone has lost, at any calibration. It knows neither the
// strings nor A4.
//
// Owned and called by whoever has blocks. Thread: one at a time; in the application the main
// thread. Nothing is allocated after construction, and nothing fails: what has no single steady
// pitch is 0.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

#include "audio/FineSpectrum.h"

namespace endpin {

class FineEstimator {
 public:
  static constexpr double kLowestPitch = 27.0;  // hertz: a 48th of the highest line

  // The pitch of `byteLength` bytes of samples taken at 7019.5 Hz, in hertz; 0, or from 27 to 3451.
  // Only the first 8192 bytes count, missing ones are silence, an odd byte drops.
  [[nodiscard]] float estimate(const std::int16_t* samples, std::uint32_t byteLength);

 private:
  // A line that was found where the partial of this number is expected; 1 is the fundamental.
  struct Partial {
    int number;
    SpectralLine line;
  };

  // A pitch, and the lines that lie on its multiples.
  class Series {
   public:
    static constexpr int kMostPartials = 48;

    void begin(double pitch);
    void follow(std::span<const SpectralLine> lines);
    // How much of the lines it explains, by weight, times how few of its low partials are missing:
    // 0 to 1. An octave too low leaves every other partial out, an octave too high every other
    // line.
    [[nodiscard]] double score(double weightOfAllLines) const;

    [[nodiscard]] double pitch() const { return pitch_; }
    [[nodiscard]] std::span<const Partial> found() const { return {found_.data(), count_}; }

   private:
    void add(int number, const SpectralLine& line);
    [[nodiscard]] double present() const;

    double pitch_;  // hertz: the mean of what the partials found so far speak for
    double weightedPitches_;
    double weights_;    // the sum of the weights in it
    double explained_;  // the sum of the lines' weights
    std::size_t count_;
    std::array<Partial, kMostPartials> found_;
  };

  [[nodiscard]] double pitchOfWhistle(std::size_t strongestBin) const;
  [[nodiscard]] double pitchOfString();
  // Leaves the best in `best_`, its score is the result.
  double findSeries(std::span<const SpectralLine> lines);
  [[nodiscard]] bool isPitch(double score) const;
  [[nodiscard]] double refined() const;

  FineSpectrum spectrum_;
  Series best_{};
  Series candidate_{};
};

}  // namespace endpin
