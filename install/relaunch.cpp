#include "install/relaunch.h"

#include "install/command_line_quoting.h"
#include "platform/programs.h"
#include "update/failing.h"
#include "update/release_channel.h"

namespace vorthmere::update {

bool relaunchGame(const std::filesystem::path& installationFolder, std::wstring& error) {
    const std::filesystem::path game = installationFolder / kGameExecutableName;
    const std::error_code failure = startProgram(game, quoteCommandLineArgument(game.wstring()), installationFolder);
    return !failure || fail(error, L"Unable to relaunch Kelvane (error " + std::to_wstring(failure.value()) + L").");
}

}  // namespace vorthmere::update
