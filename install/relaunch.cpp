#include "install/relaunch.h"

#include "install/command_line_quoting.h"
#include "platform/failure.h"
#include "platform/programs.h"
#include "update/failing.h"
#include "update/release_channel.h"

namespace vorthmere::update {

bool relaunchGame(const std::filesystem::path& installationFolder, std::wstring& error) {
    const std::filesystem::path game = installationFolder / kGameExecutableName;
    if (!startProgram(game, quoteCommandLineArgument(game.wstring()), installationFolder)) return true;
    return fail(error, L"Unable to relaunch Kelvane (error " + std::to_wstring(lastErrorNumber()) + L").");
}

}  // namespace vorthmere::update
