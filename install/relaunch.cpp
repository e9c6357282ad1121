#include "install/relaunch.h"

#include "install/command_line_quoting.h"
#include "platform/unique_handle.h"
#include "update/release_channel.h"

namespace vorthmere::update {

bool relaunchGame(const std::filesystem::path& installationFolder, std::wstring& error) {
    const std::filesystem::path game = installationFolder / kGameExecutableName;
    std::wstring commandLine = quoteCommandLineArgument(game.native());
    STARTUPINFOW startup{};
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION started{};
    if (!CreateProcessW(game.c_str(), commandLine.data(), nullptr, nullptr, FALSE, CREATE_DEFAULT_ERROR_MODE, nullptr,
                        installationFolder.c_str(), &startup, &started)) {
        error = L"Unable to relaunch Kelvane (error " + std::to_wstring(GetLastError()) + L").";
        return false;
    }
    const KernelHandle process(started.hProcess);
    const KernelHandle thread(started.hThread);
    return true;
}

}  // namespace vorthmere::update
