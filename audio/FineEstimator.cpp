#include "audio/FineEstimator.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <utility>

namespace endpin {
namespace {

constexpr double kLineReach = 4.0;  // hertz: half of a line's main lobe, and a little vibrato

// No cello string has its strongest partial as high as this.
constexpr std::size_t kFirstWhistleBin = FineSpectrum::kLastLineBin + 1;

// The least share of all power that lies in the lines. It is what turns noise, speech and clicks
// away: the one figure that matters.
constexpr double kLeastShare = 0.6;
constexpr double kLeastScore = 0.5;  // odd partials alone reach it
// A chord may pass for the upper partials of a pitch that nobody plays.
constexpr double kLeastScoreWithoutFundamental = 0.6;

constexpr std::size_t kStrongestLines = 8;  // one of which belongs to the string, as a partial
constexpr int kHighestGuess = 14;           // numbered up to this
constexpr int kMostMissing = 5;             // in a row, before a series has ended
constexpr int kLowPartials = 8;             // the ones by which octaves are told apart
// Hertz: the upper edge of the last bin that may hold a line.
constexpr double kHighestPartial = (FineSpectrum::kLastLineBin + 0.5) * FineSpectrum::kBinWidth;

constexpr double k25Cents = 0.014545334937;  // 2^(25/1200) - 1
constexpr double kCentsPerOne = 1731.234;    // 1200 / ln 2: of a small relative difference

// Hertz by which a partial may lie off its place: 25 cents. In the lowest a bin is more than that;
// in the highest it would reach so far that some multiple of a low pitch were near any line.
double reachOfPartial(double hertz) {
  return std::max(1.2, std::min(hertz * k25Cents, 9.0));
}

// The strongest of the lines that lie within `reach`, or null. Lines below are dropped from `rest`,
// which is in order of frequency: who asks goes upward.
const SpectralLine* strongestNear(double hertz, double reach, std::span<const SpectralLine>& rest) {
  while (!rest.empty() && rest.front().frequency < hertz - reach) rest = rest.subspan(1);
  const SpectralLine* strongest = nullptr;
  for (const SpectralLine& line : rest) {
    if (line.frequency > hertz + reach) break;
    if (!strongest || line.weight > strongest->weight) strongest = &line;
  }
  return strongest;
}

// What one partial says about the pitch.
struct Vote {
  double pitch;   // hertz
  double weight;  // more for a high partial, which knows it better, and for a strong one

  // Fades with the distance, by half at 1.5 cents: a partial that a string nearby pulls away is
  // left out instead of averaged in.
  [[nodiscard]] double at(double hertz) const {
    const double cents = (hertz / pitch - 1.0) * kCentsPerOne;
    return weight / (1.0 + (cents / 1.5) * (cents / 1.5));
  }
};

double supportOf(double hertz, std::span<const Vote> votes) {
  return std::accumulate(votes.begin(), votes.end(), 0.0,
                         [&](double sum, const Vote& vote) { return sum + vote.at(hertz); });
}

double meanAround(double hertz, std::span<const Vote> votes) {
  double sum = 0.0;
  for (const Vote& vote : votes) sum += vote.at(hertz) * vote.pitch;
  return sum / supportOf(hertz, votes);
}

// Where most of them agree: from the vote with the most support, four steps uphill.
double agreementOf(std::span<const Vote> votes) {
  double pitch = votes.front().pitch;
  double most = 0.0;
  for (const Vote& vote : votes) {
    const double support = supportOf(vote.pitch, votes);
    if (support > most) {
      most = support;
      pitch = vote.pitch;
    }
  }
  for (int step = 0; step < 4; ++step) pitch = meanAround(pitch, votes);
  return pitch;
}

}  // namespace

float FineEstimator::estimate(const std::int16_t* samples, std::uint32_t byteLength) {
  spectrum_.analyse({samples, byteLength / sizeof(std::int16_t)});
  const std::size_t strongest =
      spectrum_.strongestBin(FineSpectrum::kFirstLineBin, FineSpectrum::kLastBin);
  if (spectrum_.powerOf(strongest) <= 0.0) return 0.0F;
  return static_cast<float>(strongest >= kFirstWhistleBin ? pitchOfWhistle(strongest)
                                                          : pitchOfString());
}

double FineEstimator::pitchOfWhistle(std::size_t strongestBin) const {
  const double pitch = spectrum_.lineAt(strongestBin).frequency;
  const double all = spectrum_.powerBetween(FineSpectrum::kFirstLineBin, FineSpectrum::kLastBin);
  return spectrum_.powerNear(pitch, kLineReach) >= kLeastShare * all ? pitch : 0.0;
}

double FineEstimator::pitchOfString() {
  const double score = findSeries(spectrum_.findLines());
  if (!isPitch(score)) return 0.0;
  const double pitch = refined();
  return pitch >= kLowestPitch ? pitch : 0.0;
}

double FineEstimator::findSeries(std::span<const SpectralLine> lines) {
  std::array<SpectralLine, kStrongestLines> strongest;
  const auto end = std::partial_sort_copy(
      lines.begin(), lines.end(), strongest.begin(), strongest.end(),
      [](const auto& one, const auto& other) { return one.weight > other.weight; });
  const double weightOfAll =
      std::accumulate(lines.begin(), lines.end(), 0.0,
                      [](double sum, const SpectralLine& line) { return sum + line.weight; });
  double best = 0.0;
  for (auto line = strongest.begin(); line != end; ++line) {
    for (int number = 1; number <= kHighestGuess; ++number) {
      if (line->frequency / number < kLowestPitch) break;
      candidate_.begin(line->frequency / number);
      candidate_.follow(lines);
      const double score = candidate_.score(weightOfAll);
      if (score <= best) continue;
      best = score;
      std::swap(best_, candidate_);
    }
  }
  return best;
}

void FineEstimator::Series::begin(double pitch) {
  pitch_ = pitch;
  weightedPitches_ = weights_ = explained_ = 0.0;
  count_ = 0;
}

void FineEstimator::Series::follow(std::span<const SpectralLine> lines) {
  int missing = 0;
  for (int number = 1; number <= kMostPartials && missing <= kMostMissing; ++number) {
    const double hertz = number * pitch_;
    if (hertz > kHighestPartial) break;
    const SpectralLine* line = strongestNear(hertz, reachOfPartial(hertz), lines);
    missing = line ? 0 : missing + 1;
    if (line) add(number, *line);
  }
}

// A high partial knows the pitch better than a low one: its error is divided by its number.
void FineEstimator::Series::add(int number, const SpectralLine& line) {
  const double weight = number * line.weight * line.weight;
  weightedPitches_ += weight * line.frequency / number;
  weights_ += weight;
  pitch_ = weightedPitches_ / weights_;
  explained_ += line.weight;
  found_[count_++] = {number, line};
}

double FineEstimator::Series::score(double weightOfAllLines) const {
  return explained_ / weightOfAllLines * present();
}

double FineEstimator::Series::present() const {
  int low = 0;
  int highest = 1;
  for (const Partial& partial : found()) {
    if (partial.number > kLowPartials) break;
    ++low;
    highest = partial.number;
  }
  return static_cast<double>(low) / highest;
}

bool FineEstimator::isPitch(double score) const {
  if (score < kLeastScore) return false;
  if (best_.found().front().number != 1 && score < kLeastScoreWithoutFundamental) return false;
  double power = 0.0;
  for (const Partial& partial : best_.found()) {
    power += spectrum_.powerNear(partial.line.frequency, kLineReach);
  }
  return power >= kLeastShare * spectrum_.powerBetween(FineSpectrum::kFirstLineBin,
                                                       FineSpectrum::kLastLineBin);
}

// Again, more narrowly (3 Hz is less than half of a line's main lobe): a series may have taken a
// neighbour's line for its own. A bowed string's partials are exact multiples, so none is
// stretched; vibrato spreads those above 1000 Hz too far to be believed.
double FineEstimator::refined() const {
  constexpr double kHighestVoter = 1000.0;  // hertz
  const double pitch = best_.pitch();
  std::array<Vote, Series::kMostPartials> votes;
  std::size_t count = 0;
  for (const auto& [number, found] : best_.found()) {
    const double hertz = number * pitch;
    if (number > 1 && hertz > kHighestVoter) break;
    const double reach = std::clamp(hertz * k25Cents, 1.5, 3.0);
    const std::size_t bin = spectrum_.strongestPeakNear(hertz, reach);
    if (bin == 0) continue;
    const SpectralLine line = spectrum_.lineAt(bin);
    votes[count++] = {line.frequency / number,
                      std::sqrt(static_cast<double>(number)) * line.weight};
  }
  return count == 0 ? pitch : agreementOf(std::span(votes).first(count));
}

}  // namespace endpin
