#include "tests/end_to_end/support/updater_window.h"

#include <chrono>
#include <sstream>
#include <stdexcept>
#include <string_view>
#include <thread>
#include <utility>

namespace vorthmere::end_to_end {
namespace {

constexpr Milliseconds kAnswerLimit{60'000};
constexpr Milliseconds kContentLimit{30'000};
constexpr Milliseconds kLookInterval{20};

std::string valueOf(const std::vector<std::string>& answer, std::string_view key) {
    for (const std::string& line : answer)
        if (line.starts_with(key)) return line.substr(key.size());
    throw std::runtime_error("the probe did not tell " + std::string(key));
}

}  // namespace

UpdaterWindow::UpdaterWindow(ChildProcess probe) : probe_(std::move(probe)) {
    const std::vector<std::string> greeting = readAnswer();
    processId_ = valueOf(greeting, "process=");
    windowClass_ = valueOf(greeting, "window=");
}

std::vector<std::string> UpdaterWindow::tell(const std::string& command) {
    probe_.writeLine(command);
    return readAnswer();
}

std::vector<std::string> UpdaterWindow::readAnswer() {
    std::vector<std::string> lines;
    for (;;) {
        std::string line = probe_.readLine(kAnswerLimit);
        if (line == ".") return lines;
        if (line.empty()) throw std::runtime_error("the probe does not answer");
        lines.push_back(std::move(line));
    }
}

WindowContent UpdaterWindow::look() {
    const std::vector<std::string> answer = tell("look");
    return {valueOf(answer, "status="), valueOf(answer, "detail="), std::stoi(valueOf(answer, "position=")),
            valueOf(answer, "button=") == "visible", valueOf(answer, "focus=") == "button"};
}

WindowContent UpdaterWindow::waitUntil(const std::function<bool(const WindowContent&)>& wanted) {
    const auto deadline = std::chrono::steady_clock::now() + kContentLimit;
    for (;;) {
        WindowContent content = look();
        if (wanted(content) || std::chrono::steady_clock::now() > deadline) return content;
        std::this_thread::sleep_for(kLookInterval);
    }
}

ScreenArea UpdaterWindow::clientArea() {
    ScreenArea area;
    std::istringstream(tell("place").at(0)) >> area.left >> area.top >> area.width >> area.height;
    return area;
}

std::string UpdaterWindow::exitCode() {
    return tell("exit-code").at(0);
}

}  // namespace vorthmere::end_to_end
