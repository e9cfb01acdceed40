#include "desktop/FileInput.h"

#include "adapters/cli11/ParseArguments.h"

namespace endpin {
namespace {

// How far the captured sound may lag behind: a fifth of a tick.
constexpr double kStepSeconds = 0.02;

}  // namespace

FileInput::FileInput(const std::string& path)
    : sound_(openInputFile(path)), microphone_(sound_, clock_) {}

void FileInput::follow(RunLoop& runLoop) {
  begin_ = std::chrono::steady_clock::now();
  runLoop.scheduleTimer(kStepSeconds, [this] {
    const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - begin_;
    clock_.runUntil(elapsed.count());
  });
}

std::unique_ptr<AudioInputQueue> FileInput::newInput(const AudioStreamFormat& format,
                                                     AudioInputCallback callback, void* userData) {
  return microphone_.newInput(format, callback, userData);
}

}  // namespace endpin
