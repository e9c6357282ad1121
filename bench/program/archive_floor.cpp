#include <array>

#include "bench/program/digest.h"
#include "bench/program/require.h"
#include "bench/program/started_program.h"
#include "bench/program/subcommands.h"

namespace vorthmere::bench {
namespace {

std::wstring archiveTool() {
    std::array<wchar_t, MAX_PATH> folder{};
    const UINT length = GetSystemDirectoryW(folder.data(), static_cast<UINT>(folder.size()));
    require(length > 0 && length < folder.size(), "asking for the system folder");
    return std::wstring(folder.data(), length) + L"\\tar.exe";
}

void runTool(std::span<const std::wstring> words, HANDLE output) {
    require(runProgram(words, output) == 0, "the archive tool");
}

}  // namespace

void archiveFloor(Arguments arguments) {
    const std::wstring& package = arguments[0];
    Digester().digest(package);

    SECURITY_ATTRIBUTES inheritable{sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE};
    const update::testing::OpenFile nowhere(CreateFileW(L"NUL", GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                                        &inheritable, OPEN_EXISTING, 0, nullptr));
    require(static_cast<bool>(nowhere), "opening NUL");
    const std::wstring tool = archiveTool();
    runTool(std::array<std::wstring, 3>{tool, L"-tf", package}, nowhere.get());
    runTool(std::array<std::wstring, 5>{tool, L"-xf", package, L"-C", arguments[1]}, nowhere.get());
}

}  // namespace vorthmere::bench
