#include "tests/support/ChildProcess.h"

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <fstream>
#include <sstream>
#include <thread>

namespace endpin::testing {
namespace {

// Files rather than pipes: the child never blocks on a test that is not reading.
void redirect(int descriptor, const char* path) {
  dup2(open(path, O_RDWR | O_CREAT | O_CLOEXEC, 0600), descriptor);
}

std::string contents(const std::string& path) {
  std::ostringstream text;
  text << std::ifstream(path, std::ios::binary).rdbuf();
  return text.str();
}

}  // namespace

ChildProcess::ChildProcess(const Command& command, const Environment& changes) {
  Command words = {"env"};
  for (const auto& [name, value] : changes) words.push_back(name + "=" + value);
  words.insert(words.end(), command.begin(), command.end());
  std::vector<char*> arguments;
  for (std::string& word : words) arguments.push_back(word.data());
  arguments.push_back(nullptr);
  const std::string output = folder_.file("output");
  const std::string errors = folder_.file("errors");
  const pid_t parent = getpid();
  pid_ = fork();
  if (pid_ < 0) throw std::system_error(errno, std::generic_category(), "fork");
  if (pid_ > 0) return;
  // Other threads may have held any lock: only what is safe in a signal handler from here on.
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  if (getppid() != parent) _exit(127);
  redirect(STDIN_FILENO, "/dev/null");
  redirect(STDOUT_FILENO, output.c_str());
  redirect(STDERR_FILENO, errors.c_str());
  execvp(arguments[0], arguments.data());
  _exit(127);
}

ChildProcess::~ChildProcess() {
  signal(SIGKILL);
  reap(0);
}

bool ChildProcess::running() {
  reap(WNOHANG);
  return !exitCode_;
}

// A child that has been reaped gets no signal: its number may belong to somebody else by now.
void ChildProcess::signal(int number) {
  if (!exitCode_) kill(pid_, number);
}

void ChildProcess::reap(int options) {
  int status = 0;
  if (exitCode_ || waitpid(pid_, &status, options) != pid_) return;
  exitCode_ = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

std::optional<int> ChildProcess::waitFor(std::chrono::milliseconds limit) {
  const auto deadline = std::chrono::steady_clock::now() + limit;
  while (running() && std::chrono::steady_clock::now() < deadline) {
    std::this_thread::sleep_for(std::chrono::milliseconds(2));
  }
  return exitCode_;
}

std::string ChildProcess::output() const {
  return contents(folder_.file("output"));
}
std::string ChildProcess::errors() const {
  return contents(folder_.file("errors"));
}

Finished runToEnd(const Command& command, std::chrono::milliseconds limit,
                  const Environment& changes) {
  ChildProcess child(command, changes);
  const std::optional<int> exitCode = child.waitFor(limit);
  return {exitCode, child.output(), child.errors()};
}

}  // namespace endpin::testing
