// A program under test, or one that a test needs. It ends with the object, and at the latest with
// the thread that started it, so nothing outlives a test that crashes or runs into its time limit.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "tests/support/TempDirectory.h"

namespace endpin::testing {

using Command = std::vector<std::string>;
using Environment = std::map<std::string, std::string>;

class ChildProcess {
 public:
  // Puts `changes` over the test's own environment. What cannot be started ends with exit code 127.
  explicit ChildProcess(const Command& command, const Environment& changes = {});
  ~ChildProcess();
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;

  bool running();
  void signal(int number);

  // The exit code, 128 + n after signal n, or nothing when the time is up and the child still runs.
  std::optional<int> waitFor(std::chrono::milliseconds limit);

  // What the child has written so far.
  std::string output() const;
  std::string errors() const;

 private:
  void reap(int options);

  TempDirectory folder_;  // of its outputs
  pid_t pid_ = -1;
  std::optional<int> exitCode_;
};

struct Finished {
  std::optional<int> exitCode;  // nothing: it was still running at the limit, and was killed
  std::string output;
  std::string errors;
};
Finished runToEnd(const Command& command, std::chrono::milliseconds limit,
                  const Environment& changes = {});

}  // namespace endpin::testing
