#include <windows.h>

#include <cstdio>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include "files/file_status.h"
#include "tests/end_to_end/probe/subcommands.h"
#include "transfer/downloads.h"
#include "transfer/https_client.h"

namespace vorthmere::probe {
namespace {

using namespace update;

struct Outcome {
    bool succeeded = false;
    std::wstring error;
    std::uint64_t received = 0;  ///< the last that progress reported
    std::uint64_t expected = 0;
    ULONGLONG milliseconds = 0;
};

/// Removes the first word and returns it.
std::wstring takeWord(std::wstring& text) {
    const std::size_t end = text.find(L' ');
    std::wstring word = text.substr(0, end);
    text.erase(0, end == std::wstring::npos ? end : end + 1);
    return word;
}

bool perform(std::wstring job, const std::filesystem::path& target, Outcome& outcome) {
    const std::wstring kind = takeWord(job);
    if (kind == L"open") {
        InternetHandle session;
        InternetHandle connection;
        InternetHandle request;
        return openHttpsRequest(job, session, connection, request, outcome.error);
    }
    if (kind == L"manifest") {
        Manifest manifest;
        return fetchManifest(job, manifest, outcome.error);
    }
    const std::uint64_t limit = std::stoull(takeWord(job));
    const auto progress = [&outcome](std::uint64_t received, std::uint64_t expected) {
        outcome.received = received;
        outcome.expected = expected;
    };
    return downloadHttpsFile(job, target, limit, progress, outcome.error);
}

}  // namespace

int download(Arguments arguments) {
    if (arguments.empty()) return kUsageError;
    const std::filesystem::path folder(arguments[0]);
    const Arguments jobs = arguments.subspan(1);
    const auto target = [&folder](std::size_t number) { return folder / std::to_wstring(number); };

    std::vector<Outcome> outcomes(jobs.size());
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < jobs.size(); ++i)
        threads.emplace_back([&, i] {
            const ULONGLONG start = GetTickCount64();
            outcomes[i].succeeded = perform(jobs[i], target(i), outcomes[i]);
            outcomes[i].milliseconds = GetTickCount64() - start;
        });
    for (std::thread& thread : threads)
        thread.join();

    for (const Outcome& outcome : outcomes)
        std::printf("%s\t%ls\t%llu\t%llu\t%llu\n", outcome.succeeded ? "true" : "false", outcome.error.c_str(),
                    outcome.milliseconds, outcome.received, outcome.expected);
    return 0;
}

}  // namespace vorthmere::probe
