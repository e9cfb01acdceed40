// A program under test, or one that a test needs. It ends with the object, and at the latest with
// the thread that started it, so nothing outlives a test that crashes or runs into its time limit.
#pragma once

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <fstream>
#include <map>
#include <optional>
#include <sstream>
#include <vector>

#include "tests/support/Soon.h"
#include "tests/support/TempDirectory.h"

namespace endpin::testing {

using Command = std::vector<std::string>;
using Environment = std::map<std::string, std::string>;

class ChildProcess {
 public:
  // Puts `changes` over the test's own environment. What cannot be started ends with exit code 127.
  explicit ChildProcess(const Command& command, const Environment& changes = {}) {
    Command words = {"setpriv", "--pdeathsig=KILL", "env"};
    for (const auto& [name, value] : changes) words.push_back(name + "=" + value);
    words.insert(words.end(), command.begin(), command.end());
    std::vector<char*> arguments;
    for (std::string& word : words) arguments.push_back(word.data());
    arguments.push_back(nullptr);
    // Files rather than pipes: the child never blocks on a test that is not reading.
    posix_spawn_file_actions_t files;
    posix_spawn_file_actions_init(&files);
    const char* const paths[] = {"/dev/null", output_.c_str(), errors_.c_str()};
    for (int i = 0; i < 3; ++i) {
      posix_spawn_file_actions_addopen(&files, i, paths[i], O_RDWR | O_CREAT, 0600);
    }
    const int error = posix_spawnp(&pid_, arguments[0], &files, nullptr, arguments.data(), environ);
    posix_spawn_file_actions_destroy(&files);
    if (error != 0) throw std::system_error(error, std::generic_category(), "posix_spawn");
  }
  ~ChildProcess() {
    signal(SIGKILL);
    reap(0);
  }
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;

  bool running() {
    reap(WNOHANG);
    return !exitCode_;
  }

  // A child that has been reaped gets none: its number may belong to somebody else by now.
  void signal(int number) {
    if (!exitCode_) kill(pid_, number);
  }

  // The exit code, 128 + n after signal n, or nothing when the time is up and the child still runs.
  std::optional<int> waitFor(std::chrono::milliseconds limit) {
    soon(limit, [this] { return !running(); });
    return exitCode_;
  }

  // What the child has written so far.
  std::string output() const { return contents(output_); }
  std::string errors() const { return contents(errors_); }

 private:
  static std::string contents(const std::string& path) {
    std::ostringstream text;
    text << std::ifstream(path, std::ios::binary).rdbuf();
    return text.str();
  }
  void reap(int options) {
    int status = 0;
    if (exitCode_ || waitpid(pid_, &status, options) != pid_) return;
    exitCode_ = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
  }

  TempDirectory folder_;
  const std::string output_ = folder_.file("output");
  const std::string errors_ = folder_.file("errors");
  pid_t pid_ = -1;
  std::optional<int> exitCode_;
};

struct Finished {
  std::optional<int> exitCode;  // nothing: it was still running at the limit, and was killed
  std::string output;
  std::string errors;
};
inline Finished runToEnd(const Command& command, std::chrono::milliseconds limit,
                         const Environment& changes = {}) {
  ChildProcess child(command, changes);
  const std::optional<int> exitCode = child.waitFor(limit);
  return {exitCode, child.output(), child.errors()};
}

}  // namespace endpin::testing
