#include "tests/end_to_end/support/programs.h"

#include <cstdlib>
#include <stdexcept>

namespace vorthmere::end_to_end {
namespace {

std::filesystem::path built(const char* name) {
    const std::filesystem::path program = std::filesystem::path(KVN_WINDOWS_BUILD) / name;
    if (!exists(program)) throw std::runtime_error(program.string() + " is missing: build preset windows-test first");
    return program;
}

}  // namespace

std::filesystem::path updaterProgram() {
    return built("KVNUpdater.exe");
}

std::filesystem::path gameProgram() {
    return built("kvn_sample_game.exe");
}

std::filesystem::path probeProgram() {
    return built("kvn_probe.exe");
}

std::filesystem::path foreignLibrary() {
    return built("kvn_foreign_library.dll");
}

std::filesystem::path winePrefix() {
    const char* chosen = std::getenv("KVN_WINEPREFIX");
    return chosen ? chosen : KVN_WINE_PREFIX;
}

std::vector<std::string> wineCommand(const std::filesystem::path& program, const std::vector<std::string>& arguments) {
    std::vector<std::string> command{KVN_WINE_RUN, program.string()};
    command.insert(command.end(), arguments.begin(), arguments.end());
    return command;
}

}  // namespace vorthmere::end_to_end
