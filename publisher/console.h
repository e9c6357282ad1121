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

/// Shows one step of long work after the other: as a bar on a terminal, else as one line a step. When what it prints
/// cannot be written any more, the work is interrupted.
class Console {
public:
    /// @param width columns of the terminal; a bar with its text takes one less, so that it stays on one line
    Console(std::ostream& output, bool isTerminal, unsigned width = 80)
        : output_(output), isTerminal_(isTerminal), width_(width) {}

    /// From now on nothing is shown.
    void silence() {
        isSilent_ = true;
    }

    void line(const std::string& text);

    /// @param total bytes that the step has to deal with
    void beginStep(const std::string& text, std::uint64_t total);

    /// May be called by several threads at once.
    void advance(std::uint64_t bytes);

    /// To be called also when a step failed, so that nothing is printed behind a bar.
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
