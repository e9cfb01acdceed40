// A program under test, or one that a test needs. It ends with the object, and at the latest with
// the thread that started it, so nothing outlives a test that crashes or runs into its time limit.
#pragma once

#include <fcntl.h>
#include <sys/prctl.h>
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
    Command words = {"env"};
    for (const auto& [name, value] : changes) words.push_back(name + "=" + value);
    words.insert(words.end(), command.begin(), command.end());
    std::vector<char*> arguments;
    for (std::string& word : words) arguments.push_back(word.data());
    arguments.push_back(nullptr);
    const pid_t parent = getpid();
    pid_ = fork();
    if (pid_ < 0) throw std::system_error(errno, std::generic_category(), "fork");
    if (pid_ == 0) becomeChild(arguments.data(), parent);
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
  // Other threads may have held any lock: only what is safe in a signal handler.
  [[noreturn]] void becomeChild(char** arguments, pid_t parent) const {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (getppid() != parent) _exit(127);
    redirect(STDIN_FILENO, "/dev/null");
    redirect(STDOUT_FILENO, output_.c_str());
    redirect(STDERR_FILENO, errors_.c_str());
    execvp(arguments[0], arguments);
    _exit(127);
  }
  // Files rather than pipes: the child never blocks on a test that is not reading.
  static void redirect(int descriptor, const char* path) {
    dup2(open(path, O_RDWR | O_CREAT | O_CLOEXEC, 0600), descriptor);
  }
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
