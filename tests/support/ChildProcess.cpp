#include "tests/support/ChildProcess.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <system_error>
#include <thread>

namespace endpin::testing {
namespace {

using Clock = std::chrono::steady_clock;

// A file in memory rather than a pipe: the child never blocks on a test that is not reading.
int memoryFile(const char* name) {
  const int number = memfd_create(name, MFD_CLOEXEC);
  if (number < 0) throw std::system_error(errno, std::generic_category(), "memfd_create");
  return number;
}

std::string contents(int descriptor) {
  std::string text;
  char part[65536];
  ssize_t got = 0;
  while ((got = pread(descriptor, part, sizeof part, static_cast<off_t>(text.size()))) > 0) {
    text.append(part, static_cast<size_t>(got));
  }
  return text;
}

Environment environmentWith(const Environment& changes) {
  Environment all = changes;
  for (char** entry = environ; *entry != nullptr; ++entry) {
    const std::string text = *entry;
    const size_t equals = text.find('=');
    if (equals != std::string::npos) all.emplace(text.substr(0, equals), text.substr(equals + 1));
  }
  return all;
}

std::vector<char*> pointers(std::vector<std::string>& texts) {
  std::vector<char*> result;
  for (std::string& text : texts) result.push_back(text.data());
  result.push_back(nullptr);
  return result;
}

// Between fork and exec: calls that are safe in a signal handler, and nothing else.
[[noreturn]] void becomeChild(char** arguments, char** environment, int out, int err,
                              pid_t parent) {
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  if (getppid() != parent) _exit(127);
  dup2(open("/dev/null", O_RDONLY), STDIN_FILENO);
  dup2(out, STDOUT_FILENO);
  dup2(err, STDERR_FILENO);
  execvpe(arguments[0], arguments, environment);
  _exit(127);
}

}  // namespace

Descriptor::~Descriptor() {
  close(number_);
}

ChildProcess::ChildProcess(const Command& command, const Environment& changes)
    : output_(memoryFile("stdout")), errors_(memoryFile("stderr")) {
  std::vector<std::string> words = command;
  std::vector<std::string> settings;
  for (const auto& [name, value] : environmentWith(changes)) {
    settings.push_back(name + "=" + value);
  }
  const std::vector<char*> arguments = pointers(words);
  const std::vector<char*> environment = pointers(settings);
  const pid_t parent = getpid();
  pid_ = fork();
  if (pid_ < 0) throw std::system_error(errno, std::generic_category(), "fork");
  if (pid_ == 0) {
    becomeChild(const_cast<char**>(arguments.data()), const_cast<char**>(environment.data()),
                output_.number(), errors_.number(), parent);
  }
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
  const auto deadline = Clock::now() + limit;
  while (running() && Clock::now() < deadline) {
    std::this_thread::sleep_for(std::chrono::milliseconds(2));
  }
  return exitCode_;
}

std::string ChildProcess::output() const {
  return contents(output_.number());
}
std::string ChildProcess::errors() const {
  return contents(errors_.number());
}

Finished runToEnd(const Command& command, std::chrono::milliseconds limit,
                  const Environment& changes) {
  ChildProcess child(command, changes);
  const std::optional<int> exitCode = child.waitFor(limit);
  return {exitCode, child.output(), child.errors()};
}

}  // namespace endpin::testing
