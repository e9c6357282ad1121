#include "tests/end_to_end/support/call_trace.h"

#include <fstream>
#include <map>
#include <regex>
#include <stdexcept>

namespace vorthmere::end_to_end {
namespace {

constexpr unsigned long kSetBarPosition = 0x402;

// Programs are loaded at their preferred address, so the return address tells their calls from those of libraries.
const std::regex kCall(R"((\d+\.\d+):([0-9a-f]+):([0-9a-f]+):Call (\S+)\((.*)\) ret=14[0-9a-f]{7})");
const std::regex kReturn(R"((\d+\.\d+):([0-9a-f]+):([0-9a-f]+):Ret  (\S+)\(\) retval=([0-9a-f]+) ret=14[0-9a-f]{7})");
const std::regex kText(R"rx(L"((?:[^"\\]|\\.)*)")rx");

}  // namespace

std::vector<std::string> TracedCall::texts() const {
    std::vector<std::string> found;
    for (std::sregex_iterator text(arguments.begin(), arguments.end(), kText), end; text != end; ++text)
        found.push_back((*text)[1]);
    return found;
}

std::vector<unsigned long> TracedCall::numbers() const {
    static const std::regex addressedText(R"rx([0-9a-f]+ L"(?:[^"\\]|\\.)*",?)rx");
    const std::string withoutTexts = std::regex_replace(arguments, addressedText, "");
    static const std::regex number("[0-9a-f]+");
    std::vector<unsigned long> found;
    for (std::sregex_iterator each(withoutTexts.begin(), withoutTexts.end(), number), end; each != end; ++each)
        found.push_back(std::stoul(each->str(), nullptr, 16));
    return found;
}

CallTrace::CallTrace(const std::filesystem::path& traceFile, const std::string& processId) {
    const auto isWanted = [&processId](const std::string& id) { return processId.empty() || id == processId; };
    std::ifstream file(traceFile);
    // The calls that have not returned yet, by thread and function. A window's creation includes those of its children.
    std::map<std::string, std::vector<std::size_t>> open;
    std::smatch part;
    for (std::string line; std::getline(file, line);) {
        if (std::regex_match(line, part, kCall) && isWanted(part[2])) {
            open[part[3].str() + part[4].str()].push_back(calls_.size());
            calls_.push_back({std::stod(part[1]), part[4], part[5], ""});
        } else if (std::regex_match(line, part, kReturn) && isWanted(part[2])) {
            std::vector<std::size_t>& waiting = open[part[3].str() + part[4].str()];
            if (waiting.empty()) throw std::runtime_error("a call returns that never began: " + line);
            calls_[waiting.back()].result = part[5];
            waiting.pop_back();
        }
    }
}

std::vector<TracedCall> CallTrace::callsOf(const std::string& function) const {
    std::vector<TracedCall> found;
    for (const TracedCall& call : calls_)
        if (call.function == function) found.push_back(call);
    return found;
}

std::vector<std::string> stepsShown(const CallTrace& trace) {
    // The window is created first, then its controls from top to bottom.
    const std::vector<TracedCall> created = trace.callsOf("user32.CreateWindowExW");
    const auto handle = [&created](std::size_t index) { return std::stoul(created.at(index).result, nullptr, 16); };
    std::vector<std::string> steps;
    for (const TracedCall& call : trace.calls()) {
        const std::vector<unsigned long> numbers = call.numbers();
        if (call.function == "user32.SetWindowTextW")
            steps.push_back((numbers.at(0) == handle(2)   ? "status: "
                             : numbers.at(0) == handle(4) ? "detail: "
                                                          : "elsewhere: ") +
                            call.texts().at(0));
        else if (call.function == "user32.SendMessageW" && numbers.at(1) == kSetBarPosition)
            steps.push_back((numbers.at(0) == handle(3) ? "bar: " : "elsewhere: ") + std::to_string(numbers.at(2)));
    }
    return steps;
}

}  // namespace vorthmere::end_to_end
