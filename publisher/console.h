#pragma once

#include <cstdint>
#include <mutex>
#include <ostream>
#include <string>

namespace vorthmere::publish {

/// "1 file", "2 files", "1,024 files".
[[nodiscard]] std::string countOf(std::uint64_t count, const std::string& singular);

/// "123 bytes", "1.5 MiB (1,572,864 bytes)".
[[nodiscard]] std::string sizeOf(std::uint64_t bytes);

/// Shows the steps of long work: as a bar on a terminal, else as one line a step. When it can no longer print, it
/// interrupts the work.
class Console {
public:
    /// @param width columns of the terminal; a bar with its text takes at most one less, and so stays on one line
    Console(std::ostream& output, bool isTerminal, unsigned width = 80)
        : output_(output), isTerminal_(isTerminal), width_(width) {}

    /// Shows nothing from now on.
    void silence() {
        isSilent_ = true;
    }

    void line(const std::string& text);

    /// @param total bytes that the step will process
    void beginStep(const std::string& text, std::uint64_t total);

    /// May be called by several threads at once.
    void advance(std::uint64_t bytes);

    /// Also to be called when a step failed, so that the next output starts on a new line.
    void endStep();

private:
    void draw(unsigned percent);
    void flush();

    std::ostream& output_;
    const bool isTerminal_;
    const unsigned width_;
    bool isSilent_ = false;
    std::mutex mutex_;
    std::string step_;
    std::uint64_t total_ = 0;
    std::uint64_t done_ = 0;
    unsigned shownPercent_ = 0;
};

}  // namespace vorthmere::publish
