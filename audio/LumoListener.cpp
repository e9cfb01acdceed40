#include "audio/LumoListener.h"

#include <algorithm>
#include <cstring>
#include <string>

namespace endpin {

std::recursive_mutex LumoListener::classLock;
LumoListener* LumoListener::listenerInstance = nullptr;
std::optional<LumoListener::Ports> LumoListener::portsToUse;

void LumoListener::usePorts(const Ports& ports) {
  const std::lock_guard lock(classLock);
  portsToUse.emplace(ports);
}

LumoListener* LumoListener::sharedListener() {
  const std::lock_guard lock(classLock);
  if (!listenerInstance) listenerInstance = allocWithZone()->init();
  return listenerInstance;
}

LumoListener* LumoListener::allocWithZone() {
  const std::lock_guard lock(classLock);
  if (listenerInstance) return nullptr;
  listenerInstance = new LumoListener(portsToUse.value());
  return listenerInstance;
}

void LumoListener::releaseSharedListener() {
  const std::lock_guard lock(classLock);
  delete listenerInstance;
  listenerInstance = nullptr;
}

// There is one microphone, and the queue that holds it belongs to the instance that the class
// knows: that one is stopped, whichever object ends.
LumoListener::~LumoListener() {
  listenerInstance->stop();
  if (const auto error = ports_.session.setActive(false)) ports_.log.line(*error);
}

LumoListener* LumoListener::init() {
  if (const auto error = ports_.session.setCategory(AudioSessionCategory::Playback)) {
    ports_.log.line("init Error setting category: " + *error);
    return this;
  }
  ports_.session.setCategory(AudioSessionCategory::PlayAndRecord, kAudioSessionDefaultToSpeaker);
  if (const auto error = ports_.session.setActive(true)) ports_.log.line(*error);
  return this;
}

void LumoListener::listen() {
  if (!queue) setupQueue();
  if (queue) queue->start();
}

void LumoListener::pause() {
  if (isListening()) queue->stop(true);
}

// Stopped first: the callback reads the pointer, and after an immediate stop it runs no more.
void LumoListener::stop() {
  if (!queue) return;
  queue->stop(true);
  queue.reset();
}

bool LumoListener::isListening() const {
  if (!queue) return false;
  std::uint32_t running = 0;
  return queue->isRunning(running) == 0 && running != 0;
}

float LumoListener::averagePower() {
  const LevelMeterState* first = levels();
  return first ? first->mAveragePower : 0.0F;
}

float LumoListener::peakPower() {
  const LevelMeterState* first = levels();
  return first ? first->mPeakPower : 0.0F;
}

LevelMeterState* LumoListener::levels() {
  if (!isListening()) return nullptr;
  updateLevels();
  return levels_.get();
}

void LumoListener::updateLevels() {
  constexpr auto kEntryBytes = static_cast<std::uint32_t>(sizeof(LevelMeterState));
  queue->currentLevelMeter(levels_.get(), format.mChannelsPerFrame * kEntryBytes);
}

void LumoListener::setupQueue() {
  if (queue) return;
  setupFormat();
  queue = ports_.input.newInput(format, listenerInputCallback, this);
  if (!queue) return;
  setupBuffers();
  setupMetering();
}

void LumoListener::setupFormat() {
  estimated_ = fineEstimated_ = {};  // the rate counts too
  format = kCaptureFormat;
}

void LumoListener::setupBuffers() {
  for (std::uint32_t i = 0; i < kCaptureBuffers; ++i) {
    AudioInputBuffer* buffer = nullptr;
    queue->allocateBuffer(kBlockBytes, &buffer);
    queue->enqueueBuffer(buffer);
  }
}

// The status is logged on success too: a line with 0 tells that metering is on.
void LumoListener::setupMetering() {
  levels_ = std::make_unique<LevelMeterState[]>(format.mChannelsPerFrame);
  const AudioStatus status = queue->enableLevelMetering(1);
  ports_.log.line("AudioQueueSetProperty error: " + std::to_string(status));
}

void LumoListener::setAudioBuffer(const std::int16_t* samples, std::uint32_t byteLength) {
  const std::lock_guard lock(instanceLock_);
  std::memcpy(audio_data.data(), samples, byteLength);
  audio_data_len = byteLength;
  ++newestBlock_;
}

template <class Estimate>
float LumoListener::estimateOnce(Estimated& kept, Estimate estimate) {
  std::array<std::int16_t, 8192> block;
  std::uint32_t byteLength = 0;
  std::uint64_t number = kNoBlock;
  {
    const std::lock_guard lock(instanceLock_);
    number = newestBlock_;
    if (number == kept.block) return kept.hertz;
    std::copy_n(audio_data.begin(), kBlockBytes / sizeof(std::int16_t), block.begin());
    byteLength = audio_data_len;
  }
  if (byteLength == 0) return 0.0F;
  const float hertz = estimate(block.data(), byteLength);
  kept = {number, hertz};
  return hertz;
}

float LumoListener::frequency() {
  return estimateOnce(estimated_, [this](const std::int16_t* samples, std::uint32_t byteLength) {
    return getFreqFromBuffer(samples, byteLength);
  });
}

float LumoListener::fineFrequency() {
  if (!fine_) fine_ = std::make_unique<FineEstimator>();
  return estimateOnce(fineEstimated_,
                      [this](const std::int16_t* samples, std::uint32_t byteLength) {
                        return fine_->estimate(samples, byteLength);
                      });
}

std::uint64_t LumoListener::newestBlock() const {
  const std::lock_guard lock(instanceLock_);
  return newestBlock_;
}

float LumoListener::getFreqFromBuffer(const std::int16_t* samples, std::uint32_t byteLength) {
  estimated_.block = kNoBlock;
  return estimator_.getFreqFromBuffer(samples, byteLength, format.mSampleRate);
}

// Thread: capture. A buffer that comes while the queue does not run is not given back.
void LumoListener::listenerInputCallback(void* userData, AudioInputQueue* queue,
                                         AudioInputBuffer* buffer) {
  auto* listener = static_cast<LumoListener*>(userData);
  if (!listener->isListening()) return;
  listener->setAudioBuffer(buffer->mAudioData, buffer->mAudioDataByteSize);
  queue->enqueueBuffer(buffer);
}

}  // namespace endpin
