#include "desktop/Process.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <thread>

#include "support/TemporaryFolder.h"

namespace lumiscan::testing {

bool waitUntil(const std::function<bool()>& condition, const std::function<void()>& meanwhile) {
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
  while (!condition()) {
    if (std::chrono::steady_clock::now() > deadline) return false;
    if (meanwhile) meanwhile();
    // Without a pause the looks themselves would keep the X server from the program that is waited for.
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
  return true;
}

// Files without a name for the child to write into.
Process::Process(std::vector<std::string> arguments)
    : output_(memfd_create("output", MFD_CLOEXEC)), error_(memfd_create("error", MFD_CLOEXEC)) {
  std::vector<char*> argv;
  for (std::string& argument : arguments) argv.push_back(argument.data());
  argv.push_back(nullptr);
  pid_ = fork();
  if (pid_ != 0) return;
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  dup2(open("/dev/null", O_RDONLY), STDIN_FILENO);
  dup2(output_, STDOUT_FILENO);
  dup2(error_, STDERR_FILENO);
  // Nothing that whoever runs the tests holds open, a log of theirs for example.
  close_range(STDERR_FILENO + 1, ~0U, 0);
  execvp(argv[0], argv.data());
  _exit(127);
}

Process::~Process() {
  if (!exitStatus()) {
    signal(SIGKILL);
    waitpid(pid_, nullptr, 0);
  }
  close(output_);
  close(error_);
}

std::optional<int> Process::exitStatus() {
  int status = 0;
  if (!status_ && waitpid(pid_, &status, WNOHANG) == pid_)
    status_ = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
  return status_;
}

std::optional<int> Process::waitForEnd(const std::function<void()>& meanwhile) {
  waitUntil([this] { return exitStatus().has_value(); }, meanwhile);
  return exitStatus();
}

void Process::signal(int number) const { kill(pid_, number); }
std::string Process::standardOutput() const { return contentOf("/proc/self/fd/" + std::to_string(output_)); }
std::string Process::standardError() const { return contentOf("/proc/self/fd/" + std::to_string(error_)); }

long Process::countInError(const std::string& text) const {
  const std::string error = standardError();
  long count = 0;
  for (auto at = error.find(text); at != std::string::npos; at = error.find(text, at + 1)) ++count;
  return count;
}

}  // namespace lumiscan::testing
