#include "transfer/downloads.h"

#include <filesystem>
#include <stdexcept>

#include "bench/program/plain_get.h"
#include "bench/program/require.h"
#include "bench/program/stopwatch.h"
#include "bench/program/subcommands.h"
#include "tests/support/windows_handle.h"
#include "update/text.h"

namespace vorthmere::bench {
namespace {

constexpr DWORD kWriteBytes = 65536;

void writeFile(const std::wstring& path, std::uint64_t bytes) {
    const update::testing::OpenFile file(
        CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
    require(static_cast<bool>(file), "creating a file");
    const std::vector<char> block(kWriteBytes, 'x');
    for (std::uint64_t rest = bytes; rest > 0;) {
        DWORD written = 0;
        const auto count = static_cast<DWORD>(std::min<std::uint64_t>(rest, kWriteBytes));
        require(WriteFile(file.get(), block.data(), count, &written, nullptr), "writing a file");
        rest -= written;
    }
}

}  // namespace

void downloadFigure(Arguments arguments) {
    std::wstring error;
    const std::uint64_t maxBytes = std::stoull(arguments[2]);
    const Stopwatch stopwatch;
    const bool succeeded = update::downloadHttpsFile(arguments[0], arguments[1], maxBytes, {}, error);
    const double seconds = stopwatch.seconds();
    if (!succeeded) throw std::runtime_error(update::narrow(error));
    printSeconds(seconds);
}

void downloadFloor(Arguments arguments) {
    const Stopwatch stopwatch;
    const std::uint64_t bytes = PlainGet(arguments[0]).get(L"", [](const char*, DWORD) {});
    writeFile(arguments[1], bytes);
    printSeconds(stopwatch.seconds());
}

}  // namespace vorthmere::bench
