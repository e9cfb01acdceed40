// What the listener asks for and every microphone of ours delivers: one channel of signed 16-bit
// samples at 7019.5 Hz. The rate is chosen for the spectrum: a bin of the 32768-point transform is
// 0.2142181396484375 Hz wide.
#pragma once

#include <cstddef>
#include <cstdint>

#include "ports/AudioInput.h"

namespace endpin {

inline constexpr double kCaptureRate = 7019.5;               // hertz
inline constexpr std::uint64_t kCaptureRateDoubled = 14039;  // samples in two seconds
inline constexpr std::size_t kBlockSamples = 4096;           // of one buffer, about 0.58 s
inline constexpr std::size_t kBlockBytes = kBlockSamples * sizeof(std::int16_t);

inline constexpr AudioStreamFormat kCaptureFormat = {
    .mSampleRate = kCaptureRate,
    .mFormatID = kAudioFormatLinearPCM,
    .mFormatFlags = kAudioFormatFlagIsSignedInteger | kAudioFormatFlagIsPacked,
    .mBytesPerPacket = 2,
    .mFramesPerPacket = 1,
    .mBytesPerFrame = 2,
    .mChannelsPerFrame = 1,
    .mBitsPerChannel = 16,
    .mReserved = 0};

// Whether `format` is the one that the microphones deliver; they convert to no other.
[[nodiscard]] constexpr bool isCaptureFormat(const AudioStreamFormat& format) {
  return format.mSampleRate == kCaptureFormat.mSampleRate &&
         format.mFormatID == kCaptureFormat.mFormatID &&
         (format.mFormatFlags & kAudioFormatFlagIsSignedInteger) != 0 &&
         format.mChannelsPerFrame == kCaptureFormat.mChannelsPerFrame &&
         format.mBitsPerChannel == kCaptureFormat.mBitsPerChannel;
}

}  // namespace endpin
