// Those of the tests' instruments that could make a real test pass when they are wrong.
#include <gtest/gtest.h>

#include <cmath>

#include "tests/support/Tone.h"

namespace endpin::testing {
namespace {

TEST(Tone, IsMeasuredFarMoreFinelyThanAnyBand) {
  const struct {
    double fundamental;
    double guessOffCents;
    std::vector<double> amplitudes;
    double noise;
    double toleranceCents;
  } rows[] = {
      {146.8323839594813, -25.0, {0.2, 0.1, 0.07, 0.05}, 0.0, 0.001},
      {65.31, 25.0, {0.001, 0.1, 0.2, 0.05, 0.1, 0.02}, 0.0, 0.001},
      {97.99885899614745, 7.0, {0.2}, 0.0, 0.001},
      {65.4063913257512, -7.0, {0.05, 0.1, 0.05, 0.02}, 0.01, 0.05},
  };
  for (const auto& row : rows) {
    const Sound tone = harmonics(48000.0, 4.0, row.fundamental, row.amplitudes);
    const Sound heard = mixed(tone, noise(48000.0, 4.0, row.noise));
    const double guess = raisedByCents(row.fundamental, row.guessOffCents);
    const double cents = 1200.0 * std::log2(fundamentalOf(heard, guess) / row.fundamental);
    EXPECT_NEAR(cents, 0.0, row.toleranceCents) << row.fundamental;
    for (const double octave : {0.5, 2.0}) EXPECT_EQ(fundamentalOf(heard, octave * guess), 0.0);
  }
}

}  // namespace
}  // namespace endpin::testing
