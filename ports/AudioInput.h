// The microphone as an input queue: a set of buffers that the queue fills one after the other and
// hands to a callback, which gives them back when it has copied what it needs.
//
// Called by the listener (main thread). The callback runs on the queue's own thread.
#pragma once

#include <cstdint>
#include <memory>

namespace endpin {

// What one sample stream looks like. Field order and meaning are those of the capture format.
struct AudioStreamFormat {
  double mSampleRate = 0;               // hertz
  std::uint32_t mFormatID = 0;          // four-character code
  std::uint32_t mFormatFlags = 0;       // kAudioFormatFlag… bits
  std::uint32_t mBytesPerPacket = 0;    // bytes
  std::uint32_t mFramesPerPacket = 0;   // frames
  std::uint32_t mBytesPerFrame = 0;     // bytes
  std::uint32_t mChannelsPerFrame = 0;  // channels
  std::uint32_t mBitsPerChannel = 0;    // bits
  std::uint32_t mReserved = 0;
};

inline constexpr std::uint32_t kAudioFormatLinearPCM = 0x6c70636d;  // 'lpcm'
inline constexpr std::uint32_t kAudioFormatFlagIsSignedInteger = 4;
inline constexpr std::uint32_t kAudioFormatFlagIsPacked = 8;

// Levels of one channel, linear, 0 to 1 of full scale.
struct LevelMeterState {
  float mAveragePower = 0;
  float mPeakPower = 0;
};

// 0 is success; anything else is the platform's own error number.
using AudioStatus = std::int32_t;

// One capture buffer. The queue that allocated it owns it and frees it when the queue goes.
struct AudioInputBuffer {
  std::int16_t* mAudioData = nullptr;
  std::uint32_t mAudioDataBytesCapacity = 0;  // bytes
  std::uint32_t mAudioDataByteSize = 0;       // bytes filled
};

class AudioInputQueue {
 public:
  // Disposes of the queue: when the destructor returns, no callback runs or will run again, and
  // all buffers are freed. Never called from the callback.
  virtual ~AudioInputQueue() = default;

  // Thread: main, before start.
  virtual AudioStatus allocateBuffer(std::uint32_t byteSize, AudioInputBuffer** buffer) = 0;

  // Queues a buffer to be filled. Buffers are filled in the order in which they were enqueued; a
  // block for which no buffer is queued is lost.
  // Thread: main, or the callback.
  virtual AudioStatus enqueueBuffer(AudioInputBuffer* buffer) = 0;

  // Begins to deliver as soon as the device does. A device that is missing or goes away is waited
  // for; the queue does not count as running meanwhile.
  // Thread: main. Does not wait for the device.
  virtual AudioStatus start() = 0;

  // Stops delivering; with `immediate` without waiting for a partly filled buffer, and when it
  // returns no callback runs any more.
  // Thread: main.
  virtual AudioStatus stop(bool immediate) = 0;

  // Sets `running` to 1 while the queue is started and its device delivers, else to 0.
  // Thread: main, or the callback (during which the answer only changes through stop).
  virtual AudioStatus isRunning(std::uint32_t& running) const = 0;

  // Turns level metering on (1) or off (0).
  virtual AudioStatus enableLevelMetering(std::uint32_t enable) = 0;

  // Writes the current levels, one entry a channel, up to `byteSize` bytes.
  // Thread: main.
  virtual AudioStatus currentLevelMeter(LevelMeterState* levels, std::uint32_t byteSize) const = 0;
};

// Runs on the queue's own thread for each filled buffer. `queue` is the queue that filled it.
using AudioInputCallback = void (*)(void* userData, AudioInputQueue* queue,
                                    AudioInputBuffer* buffer);

// Where queues come from.
class AudioInput {
 public:
  virtual ~AudioInput() = default;

  // Makes a stopped queue that delivers `format`, converting from what the device runs at. Null
  // when the format cannot be delivered.
  // Thread: main. Does not touch the device yet.
  virtual std::unique_ptr<AudioInputQueue> newInput(const AudioStreamFormat& format,
                                                    AudioInputCallback callback,
                                                    void* userData) = 0;
};

}  // namespace endpin
