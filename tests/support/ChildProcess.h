// A program under test, or one that a test needs: started by its constructor, its two outputs kept
// in memory, ended and reaped by the destructor. The kernel ends it too when the test dies first,
// so nothing outlives a test that crashes or runs into its time limit.
//
// Thread: the one that starts it must live as long as the child.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace endpin::testing {

using Command = std::vector<std::string>;
using Environment = std::map<std::string, std::string>;

// An open file descriptor with an owner.
class Descriptor {
 public:
  explicit Descriptor(int number) : number_(number) {}
  ~Descriptor();
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  int number() const { return number_; }

 private:
  int number_;
};

class ChildProcess {
 public:
  // The environment is the test's own, with `changes` put over it. A program that cannot be started
  // ends with exit code 127.
  explicit ChildProcess(const Command& command, const Environment& changes = {});
  ~ChildProcess();
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;

  pid_t pid() const { return pid_; }
  bool running();
  void signal(int number);

  // The exit code, 128 + n after signal n, or nothing when the time is up and the child still runs.
  std::optional<int> waitFor(std::chrono::milliseconds limit);

  // What the child has written so far. Cheap enough to be polled.
  std::string output() const;
  std::string errors() const;

 private:
  void reap(int options);

  Descriptor output_;
  Descriptor errors_;
  pid_t pid_ = -1;
  std::optional<int> exitCode_;
};

struct Finished {
  std::optional<int> exitCode;  // Nothing: it was still running at the limit, and was killed.
  std::string output;
  std::string errors;
};

// Runs a program to its end, for at most `limit`.
Finished runToEnd(const Command& command, std::chrono::milliseconds limit,
                  const Environment& changes = {});

}  // namespace endpin::testing
