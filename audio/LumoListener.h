// The one object that owns the microphone. It keeps the newest captured block and answers how loud
// the input is now and what pitch it carries.
//
// The main thread makes it, starts it and asks it ten times a second. The input callback, on the
// queue's own thread, copies each block in under the instance lock; `frequency` copies it out under
// the same lock and estimates outside it, so that the callback never waits for a transform.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>

#include "audio/CaptureFormat.h"
#include "audio/FineEstimator.h"
#include "audio/PitchEstimator.h"
#include "ports/AudioInput.h"
#include "ports/AudioSession.h"
#include "ports/Log.h"

namespace endpin {

class LumoListener {
 public:
  // What the listener needs of the platform. They outlive the listener.
  struct Ports {
    AudioInput& input;
    AudioSession& session;
    Log& log;
  };

  static constexpr std::uint32_t kCaptureBuffers = 3;

  // Names the platform for the instance to come. Once, before the first sharedListener.
  static void usePorts(const Ports& ports);

  // The single instance, made on first use. Thread: any.
  static LumoListener* sharedListener();

  // The memory of the single instance, or null when there is one already: a second one cannot be
  // made. Thread: any.
  static LumoListener* allocWithZone();

  // Ends the single instance, if there is one: its queue is disposed of and the audio session let
  // go. The next sharedListener makes a new one. For an orderly end of the process.
  // Thread: main.
  static void releaseSharedListener();

  // Configures the audio session and returns this. Failures are logged; it makes no queue.
  LumoListener* init();
  LumoListener* copyWithZone() { return this; }

  LumoListener(const LumoListener&) = delete;
  LumoListener& operator=(const LumoListener&) = delete;

  // Starts capturing, making the queue first when there is none; pauses it; disposes of it.
  void listen();
  void pause();
  void stop();

  // Whether a queue exists and says that it runs. Thread: main, or the input callback.
  [[nodiscard]] bool isListening() const;

  // Linear level of the input now, 0 to 1; 0 when not listening.
  float averagePower();
  float peakPower();

  // One entry a channel, owned by the listener; null when not listening.
  LevelMeterState* levels();
  void updateLevels();

  // Steps of listen.
  void setupQueue();
  void setupFormat();
  void setupBuffers();
  void setupMetering();

  // Keeps a copy of the newest block; at most 8192 bytes, unchecked. Thread: any.
  void setAudioBuffer(const std::int16_t* samples, std::uint32_t byteLength);

  // Pitch of the newest block in hertz; 0 before the first block. Five ticks out of six find the
  // block of the tick before: it is estimated once, and its answer and its spectrum stay.
  // Thread: main.
  float frequency();

  // The same from the fine estimator; 0 also where there is no steady pitch. Thread: main.
  float fineFrequency();

  // Number of the newest block, counted from 1; 0 before the first one. Thread: any.
  [[nodiscard]] std::uint64_t newestBlock() const;

  // The estimate and its steps, see PitchEstimator. Thread: main.
  float getFreqFromBuffer(const std::int16_t* samples, std::uint32_t byteLength);
  double* freq_db() { return estimator_.freq_db(); }
  double* freq_db_harmonic() { return estimator_.freq_db_harmonic(); }

 private:
  explicit LumoListener(const Ports& platform) : ports_(platform) {}
  ~LumoListener();

  static constexpr std::uint64_t kNoBlock = 0;

  // An estimate and the block that it is of.
  struct Estimated {
    std::uint64_t block = kNoBlock;
    float hertz = 0;
  };
  template <class Estimate>
  float estimateOnce(Estimated& kept, Estimate estimate);

  static void listenerInputCallback(void* userData, AudioInputQueue* queue,
                                    AudioInputBuffer* buffer);

  static std::recursive_mutex classLock;  // taken again by allocWithZone under sharedListener
  static LumoListener* listenerInstance;
  static std::optional<Ports> portsToUse;

  Ports ports_;
  std::unique_ptr<LevelMeterState[]> levels_;  // one entry a channel, from setupMetering on
  std::unique_ptr<AudioInputQueue> queue;      // null while there is none
  AudioStreamFormat format;
  [[maybe_unused]] double sampleRate = 0;       // unused; the format's rate is the one that counts
  std::array<std::int16_t, 8192> audio_data{};  // only the first half is ever filled
  std::uint32_t audio_data_len = 0;             // bytes; 0 until the first block
  std::uint64_t newestBlock_ = kNoBlock;        // numbers them
  PitchEstimator estimator_;
  Estimated estimated_;                  // of the block whose spectrum the estimator holds
  std::unique_ptr<FineEstimator> fine_;  // from the first time that it is asked
  Estimated fineEstimated_;
  mutable std::recursive_mutex instanceLock_;  // guards audio_data, audio_data_len, newestBlock_
};

}  // namespace endpin
