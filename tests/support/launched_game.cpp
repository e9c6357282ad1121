#include "tests/support/launched_game.h"

#include <fstream>
#include <sstream>
#include <stdexcept>

#include "tests/support/child_process.h"
#include "tests/support/temporary_folder.h"

namespace vorthmere::update::testing {
namespace {

constexpr const wchar_t* kReportName = L"launched.txt";

/// The report cannot be opened while the game renames it, so the first attempts may fail.
std::string waitForReport(const std::filesystem::path& file) {
    for (const ULONGLONG end = GetTickCount64() + kPatienceMs; GetTickCount64() < end; Sleep(5))
        if (std::ifstream(file).good()) return readFile(file);
    throw std::runtime_error("no game was started in " + file.parent_path().string());
}

}  // namespace

LaunchedGame::LaunchedGame(const std::filesystem::path& installationFolder) {
    const std::filesystem::path report = installationFolder / kReportName;
    report_ = waitForReport(report);
    std::filesystem::remove(report);
    process_.reset(OpenProcess(SYNCHRONIZE, FALSE, std::stoul(fact("process"))));
}

// There is no handle of a game that had ended before it could be opened.
LaunchedGame::~LaunchedGame() {
    if (process_) WaitForSingleObject(process_.get(), kPatienceMs);
}

std::string LaunchedGame::fact(const std::string& name) const {
    std::istringstream lines(report_);
    for (std::string line; std::getline(lines, line);)
        if (line.starts_with(name + "=")) return line.substr(name.size() + 1);
    return "(none)";
}

bool LaunchedGame::hasEnded() const {
    return !process_ || WaitForSingleObject(process_.get(), 0) == WAIT_OBJECT_0;
}

bool gameWasLaunched(const std::filesystem::path& installationFolder) {
    return std::filesystem::exists(installationFolder / kReportName);
}

}  // namespace vorthmere::update::testing
