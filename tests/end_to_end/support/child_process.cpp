#include "tests/end_to_end/support/child_process.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <system_error>
#include <utility>

namespace vorthmere::end_to_end {
namespace {

[[noreturn]] void throwLastError(const char* what) {
    throw std::system_error(errno, std::generic_category(), what);
}

void closeIfOpen(int& descriptor) {
    if (descriptor >= 0) close(std::exchange(descriptor, -1));
}

bool becomesReadable(int descriptor, Milliseconds timeLimit) {
    pollfd waiting{descriptor, POLLIN, 0};
    return poll(&waiting, 1, static_cast<int>(timeLimit.count())) > 0;
}

/// Runs in the child, between fork and exec.
[[noreturn]] void becomeProgram(const std::vector<std::string>& command, const ProcessOptions& options, int input,
                                int output) {
    setpgid(0, 0);
    dup2(input, STDIN_FILENO);
    dup2(output, STDOUT_FILENO);
    if (!options.outputFile.empty()) dup2(output, STDERR_FILENO);
    if (!options.errorFile.empty())
        dup2(open(options.errorFile.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666), STDERR_FILENO);
    if (!options.currentFolder.empty() && chdir(options.currentFolder.c_str()) != 0) _exit(127);
    for (const std::string& variable : options.environment)
        putenv(const_cast<char*>(variable.c_str()));
    std::vector<char*> argv;
    for (const std::string& argument : command)
        argv.push_back(const_cast<char*>(argument.c_str()));
    argv.push_back(nullptr);
    execv(argv.front(), argv.data());
    _exit(127);
}

}  // namespace

ChildProcess::ChildProcess(const std::vector<std::string>& command, const ProcessOptions& options) {
    int input[2] = {-1, -1};
    int output[2] = {-1, -1};
    if (options.outputFile.empty()) {
        if (pipe2(input, O_CLOEXEC) != 0 || pipe2(output, O_CLOEXEC) != 0) throwLastError("pipe");
    } else {
        input[0] = open("/dev/null", O_RDONLY | O_CLOEXEC);
        output[1] = open(options.outputFile.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
        if (output[1] < 0) throwLastError("output file");
    }
    started_ = std::chrono::steady_clock::now();
    id_ = fork();
    if (id_ < 0) throwLastError("fork");
    if (id_ == 0) becomeProgram(command, options, input[0], output[1]);
    setpgid(id_, id_);
    pidfd_ = static_cast<int>(syscall(SYS_pidfd_open, id_, 0));
    if (pidfd_ < 0) throwLastError("pidfd_open");
    close(input[0]);
    close(output[1]);
    input_ = input[1];
    output_ = output[0];
}

ChildProcess::ChildProcess(ChildProcess&& other) noexcept
    : id_(std::exchange(other.id_, -1)),
      pidfd_(std::exchange(other.pidfd_, -1)),
      input_(std::exchange(other.input_, -1)),
      output_(std::exchange(other.output_, -1)),
      ended_(std::exchange(other.ended_, true)),
      started_(other.started_),
      end_(other.end_) {}

ChildProcess::~ChildProcess() {
    if (!ended_ && id_ > 0) wait(Milliseconds(0));
    closeIfOpen(pidfd_);
    closeIfOpen(input_);
    closeIfOpen(output_);
}

std::string ChildProcess::readLine(Milliseconds timeLimit) {
    const auto deadline = std::chrono::steady_clock::now() + timeLimit;
    std::string line;
    char c = 0;
    while (becomesReadable(output_, std::max(Milliseconds(0), std::chrono::ceil<Milliseconds>(
                                                                  deadline - std::chrono::steady_clock::now()))) &&
           read(output_, &c, 1) == 1) {
        if (c == '\n') break;
        line.push_back(c);
    }
    if (line.ends_with('\r')) line.pop_back();
    return line;
}

void ChildProcess::writeLine(const std::string& line) {
    const std::string text = line + "\n";
    for (std::size_t written = 0; written < text.size();) {
        const ssize_t count = write(input_, text.data() + written, text.size() - written);
        if (count < 0) throwLastError("write");
        written += static_cast<std::size_t>(count);
    }
}

void ChildProcess::closeInput() {
    closeIfOpen(input_);
}

void ChildProcess::kill() {
    if (!ended_) ::kill(id_, SIGKILL);
}

void ChildProcess::killGroup() {
    if (!ended_) ::kill(-id_, SIGKILL);
}

void ChildProcess::suspend() {
    if (::kill(id_, SIGSTOP) != 0) throwLastError("SIGSTOP");
    siginfo_t ignored;
    if (waitid(P_PID, static_cast<id_t>(id_), &ignored, WSTOPPED | WEXITED | WNOWAIT) != 0) throwLastError("waitid");
}

void ChildProcess::resume() {
    if (::kill(id_, SIGCONT) != 0) throwLastError("SIGCONT");
}

bool ChildProcess::hasEnded(Milliseconds timeLimit) {
    if (ended_) return true;
    if (!becomesReadable(pidfd_, timeLimit)) return false;
    int status = 0;
    if (waitpid(id_, &status, 0) != id_) throwLastError("waitpid");
    takeEnd(status);
    return true;
}

ProcessEnd ChildProcess::wait(Milliseconds timeLimit) {
    if (!hasEnded(timeLimit)) {
        killGroup();
        int status = 0;
        if (waitpid(id_, &status, 0) != id_) throwLastError("waitpid");
        takeEnd(status);
    }
    return end_;
}

void ChildProcess::takeEnd(int status) {
    ended_ = true;
    end_.killed = WIFSIGNALED(status);
    end_.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    end_.duration = std::chrono::duration_cast<Milliseconds>(std::chrono::steady_clock::now() - started_);
}

}  // namespace vorthmere::end_to_end
