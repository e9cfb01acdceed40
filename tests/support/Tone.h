// Sounds made by arithmetic, for tests that must know exactly what is in them, and their files.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace endpin::testing {

// One channel, full scale ±1, at `rate` samples a second (the capture rate is no whole number).
struct Sound {
  double rate = 48000.0;
  std::vector<float> samples;

  double seconds() const { return static_cast<double>(samples.size()) / rate; }
};

// amplitudes[k - 1] is the peak of harmonic k; those at or above half the rate are left out.
Sound harmonics(double rate, double seconds, double fundamental,
                const std::vector<double>& amplitudes);
// What a bowed string is to these tests: 12 harmonics falling like 1/k, at this RMS level.
Sound bowedTone(double rate, double seconds, double fundamental, double level = 0.1);
// White, Gaussian, of this RMS level; the same for the same seed.
Sound noise(double rate, double seconds, double level, std::uint32_t seed = 1);
Sound silence(double rate, double seconds);

double rms(const Sound& sound);
Sound scaledToRms(Sound sound, double level);
// Of two sounds at one rate; mixed() is as long as the longer one.
Sound mixed(Sound sound, const Sound& other);
Sound joined(Sound sound, const Sound& next);
Sound slice(const Sound& sound, double fromSeconds, double toSeconds);
// At another rate, at the same pitch.
Sound resampled(const Sound& sound, double rate);

// As the microphone of a telephone hears it, at some distance: without the bass below `cornerInHz`
// (two first-order high passes), at an RMS level of 0.03 over a floor of noise 30 dB below.
Sound throughSmallMicrophone(Sound sound, double cornerInHz);

// What lies between the silences of `silence` seconds or more, from first to last sounding sample.
// A busy machine tears gaps into what its sound server passes on: a millisecond finds them.
std::vector<Sound> partsBetweenSilences(const Sound& sound, double silence = 0.001);
// Of all of them together.
double soundingSeconds(const Sound& sound);

// The fundamental of a steady tone in hertz, measured far more finely than the tuner does it and in
// another way; 0 for one that is not near `guess`, which may be off by 25 cents.
double fundamentalOf(const Sound& sound, double guess);
double raisedByCents(double frequency, double cents);

// Rounded to nearest, clipped at full scale.
std::vector<std::int16_t> toS16(const Sound& sound);

// Each channel carries the whole sound. `format` is libsndfile's; the rate is rounded to whole
// hertz. All throw std::runtime_error when the file cannot be used.
void writeSoundFile(const std::string& path, const Sound& sound, int format, int channels = 1);
void writeWav(const std::string& path, const Sound& sound, int channels = 1);
// The first channel.
Sound readSoundFile(const std::string& path);

}  // namespace endpin::testing
