#include "publisher/console.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <sstream>

#include "publisher/interruption.h"

namespace vorthmere::publish {
namespace {

constexpr unsigned kBarWidth = 30;

std::string withSeparators(std::uint64_t number) {
    std::string digits = std::to_string(number);
    for (std::size_t position = digits.size(); position > 3;) {
        position -= 3;
        digits.insert(position, 1, ',');
    }
    return digits;
}

}  // namespace

std::string countOf(std::uint64_t count, const std::string& singular) {
    return withSeparators(count) + " " + singular + (count == 1 ? "" : "s");
}

std::string sizeOf(std::uint64_t bytes) {
    constexpr std::array units = {"KiB", "MiB", "GiB"};
    if (bytes < 1024) return countOf(bytes, "byte");
    auto amount = static_cast<double>(bytes) / 1024;
    std::size_t unit = 0;
    for (; amount >= 1024 && unit + 1 < units.size(); ++unit)
        amount /= 1024;
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%.1f %s", amount, units[unit]);
    return std::string(text.data()) + " (" + countOf(bytes, "byte") + ")";
}

void Console::line(const std::string& text) {
    if (isSilent_) return;
    output_ << text << '\n';
    flush();
}

void Console::beginStep(const std::string& text, std::uint64_t total) {
    const std::lock_guard lock(mutex_);
    step_ = text;
    total_ = total;
    done_ = 0;
    if (isTerminal_)
        draw(0);
    else
        line(text + "...");
}

void Console::advance(std::uint64_t bytes) {
    const std::lock_guard lock(mutex_);
    done_ += bytes;
    const unsigned percent =
        total_ == 0 ? 100 : static_cast<unsigned>(std::min(done_ * 100 / total_, std::uint64_t{100}));
    if (isTerminal_ && percent != shownPercent_) draw(percent);
}

void Console::endStep() {
    const std::lock_guard lock(mutex_);
    if (isTerminal_ && !step_.empty()) line("");
    step_.clear();
}

void Console::draw(unsigned percent) {
    if (isSilent_) return;
    const unsigned filled = percent * kBarWidth / 100;
    std::ostringstream bar;
    bar << '[' << std::string(filled, '#') << std::string(kBarWidth - filled, '.') << "] " << percent << "% " << step_;
    std::string text = bar.str();
    // A line that a terminal wraps cannot be drawn over. Some terminals wrap at the last column already.
    if (width_ != 0 && text.size() >= width_) text.resize(width_ - 1);
    output_ << '\r' << text;
    flush();
    shownPercent_ = percent;
}

void Console::flush() {
    if (output_.flush()) return;
    isSilent_ = true;
    interrupt("What is to be printed cannot be written, so the work was ended.");
}

}  // namespace vorthmere::publish
