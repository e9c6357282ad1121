#include "tests/kit/test_programs.h"

#include <sstream>

#include "tests/kit/machine.h"
#include "tests/support/temporary_folder.h"

namespace vorthmere::kit {
namespace {

constexpr DWORD kTimeLimitMs = 600000;
constexpr std::string_view kStartMark = "[ RUN ";
constexpr std::string_view kFailedMark = "[  FAILED  ] ";
constexpr std::string_view kSkippedMark = "[  SKIPPED ] ";
constexpr std::string_view kPassedMark = "[  PASSED  ] ";

/// The name of the test whose result a line gives; empty for other lines.
std::string testIn(const std::string& line, std::string_view mark) {
    if (!line.starts_with(mark) || !line.ends_with(" ms)")) return {};
    return line.substr(mark.size(), line.rfind(" (") - mark.size());
}

void reportCount(Report& report, const std::string& program, const std::string& count, bool filtered) {
    if (count == "0 tests." && !filtered) {
        report.failed(program, "none of its tests passed");
    } else {
        report.passed(program, count);
    }
}

void reportTests(Report& report, const std::string& program, const std::string& output, bool filtered) {
    std::istringstream lines(output);
    std::string reason;
    for (std::string line; std::getline(lines, line);) {
        while (line.ends_with('\r'))
            line.pop_back();
        const std::string failed = testIn(line, kFailedMark);
        const std::string skipped = testIn(line, kSkippedMark);
        if (!failed.empty()) report.failed(program + ", " + failed, reason);
        if (!skipped.empty()) report.skipped(program + ", " + skipped, reason);
        if (line.starts_with(kPassedMark)) reportCount(report, program, line.substr(kPassedMark.size()), filtered);
        if (line.starts_with(kStartMark)) {
            reason.clear();
        } else {
            reason += (reason.empty() ? "" : " | ") + line;
        }
    }
}

}  // namespace

void runTestPrograms(Report& report, const std::filesystem::path& workFolder, const std::wstring& filter) {
    report.heading("Tests of functions");
    std::istringstream programs(update::testing::readFile(kitFolder() / L"programs.txt"));
    for (std::string name; programs >> name;) {
        const std::filesystem::path output = workFolder / (name + ".txt");
        try {
            const Program program(kitFolder() / name, L"--gtest_filter=" + filter, output);
            const DWORD exitCode = program.waitForEnd(kTimeLimitMs);
            const std::string text = update::testing::readFile(output);
            reportTests(report, name, text, filter != L"*");
            const bool ended = text.find(kPassedMark) != std::string::npos;
            if (!ended) report.failed(name, "it ended with " + std::to_string(exitCode) + " before its tests did");
        } catch (const std::exception& failure) {
            report.failed(name, failure.what());
        }
    }
}

}  // namespace vorthmere::kit
