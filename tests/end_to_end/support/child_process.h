#pragma once

#include <sys/types.h>

#include <chrono>
#include <filesystem>
#include <string>
#include <vector>

namespace vorthmere::end_to_end {

using Milliseconds = std::chrono::milliseconds;

/// How a process ended.
struct ProcessEnd {
    int exitCode = -1;  ///< 8 bits of it, as the system hands them on; -1 when it was killed
    bool killed = false;
    Milliseconds duration{0};
};

/// How to start a process.
struct ProcessOptions {
    std::filesystem::path currentFolder;   ///< empty: this process's
    std::filesystem::path outputFile;      ///< receives both outputs, there is no input; empty: pipes
    std::vector<std::string> environment;  ///< "NAME=value", in addition to this process's
    std::filesystem::path errorFile = {};  ///< receives standard error; empty: it goes where the output file says
};

/// A child process in its own process group. The destructor kills it.
class ChildProcess {
public:
    /// @param command the program's path and its arguments
    /// @throws std::system_error when the system cannot start another process
    explicit ChildProcess(const std::vector<std::string>& command, const ProcessOptions& options = {});
    ChildProcess(ChildProcess&& other) noexcept;
    ChildProcess& operator=(ChildProcess&&) = delete;
    ~ChildProcess();

    [[nodiscard]] pid_t id() const {
        return id_;
    }

    /// The next line of standard output, without its line end. When the output ends or the time is up, returns what was
    /// read until then. Only without an output file.
    [[nodiscard]] std::string readLine(Milliseconds timeLimit);

    /// Writes a line to the child's standard input.
    ///
    /// @throws std::system_error when the child reads no more
    void writeLine(const std::string& line);

    /// Ends the child's standard input.
    void closeInput();

    /// Sends SIGKILL to the process alone, or to its whole group. The caller still has to wait for the end.
    void kill();
    void killGroup();

    /// Stops the process, and lets it continue.
    void suspend();
    void resume();

    /// True when the process has ended within the time; wait() then tells how.
    [[nodiscard]] bool hasEnded(Milliseconds timeLimit);

    /// Waits for the end. A process that takes longer is killed with its group, and `killed` is set.
    ProcessEnd wait(Milliseconds timeLimit);

private:
    void takeEnd(int status);

    pid_t id_ = -1;
    int pidfd_ = -1;
    int input_ = -1;
    int output_ = -1;
    bool ended_ = false;
    std::chrono::steady_clock::time_point started_;
    ProcessEnd end_;
};

}  // namespace vorthmere::end_to_end
