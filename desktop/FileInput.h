// A sound file as the microphone, in real time: a virtual clock follows the real one, a fiftieth of
// a second at a time. The file begins when the application starts to listen; silence follows it,
// and goes on as that of a quiet room does. Thread: main.
#pragma once

#include <chrono>
#include <string>

#include "adapters/offline/CapturedSound.h"
#include "adapters/offline/FileMicrophone.h"
#include "adapters/offline/VirtualRunLoop.h"

namespace endpin {

class FileInput final : public AudioInput {
 public:
  // Throws ProgramError for a file that is missing, not readable or no sound.
  explicit FileInput(const std::string& path);
  FileInput(const FileInput&) = delete;
  FileInput& operator=(const FileInput&) = delete;

  // Lets the clock follow the real one from now on. `runLoop` must not run any more when the input
  // goes.
  void follow(RunLoop& runLoop);

  std::unique_ptr<AudioInputQueue> newInput(const AudioStreamFormat& format,
                                            AudioInputCallback callback, void* userData) override;

 private:
  CapturedSound sound_;
  VirtualRunLoop clock_;
  FileMicrophone microphone_;
  std::chrono::steady_clock::time_point begin_;
};

}  // namespace endpin
