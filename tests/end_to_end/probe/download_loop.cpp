#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

#include "platform/https.h"
#include "tests/end_to_end/probe/subcommands.h"
#include "transfer/downloads.h"

namespace vorthmere::probe {
namespace {

constexpr std::uint64_t kLimit = 1000;
constexpr int kWarmUpRounds = 5;
constexpr std::size_t kProbedHandles = 64;

// Wine gives a new WinHTTP handle the lowest free number, so each handle that was never closed raises the highest
// number among some new ones. On Windows the number means nothing.
std::size_t highestOfNewInternetHandles() {
    std::vector<update::InternetHandle> sessions(kProbedHandles);
    std::size_t highest = 0;
    for (update::InternetHandle& session : sessions) {
        session = update::openSession(L"");
        highest = std::max(highest, reinterpret_cast<std::size_t>(session.get()));
    }
    return highest;
}

void printCounts(const char* when, int succeeded) {
    DWORD handles = 0;
    GetProcessHandleCount(GetCurrentProcess(), &handles);
    std::printf("%s\t%lu\t%zu\t%d\n", when, handles, highestOfNewInternetHandles(), succeeded);
}

}  // namespace

int downloadLoop(Arguments arguments) {
    if (arguments.size() < 3) return kUsageError;
    const int rounds = std::stoi(arguments[0]);
    const std::filesystem::path target(arguments[1]);
    int succeeded = 0;
    for (int round = -kWarmUpRounds; round < rounds; ++round) {
        if (round == 0) printCounts("before", succeeded);
        for (const std::wstring& url : arguments.subspan(2)) {
            std::wstring error;
            if (update::downloadHttpsFile(url, target, kLimit, {}, error)) ++succeeded;
        }
    }
    printCounts("after", succeeded);
    return 0;
}

}  // namespace vorthmere::probe
