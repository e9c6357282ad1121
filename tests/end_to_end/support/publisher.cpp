#include "tests/end_to_end/support/publisher.h"

#include <algorithm>
#include <cstdlib>
#include <stdexcept>
#include <string_view>

#include "tests/end_to_end/support/child_process.h"
#include "tests/end_to_end/support/files.h"
#include "tests/end_to_end/support/programs.h"
#include "tests/end_to_end/support/release_texts.h"
#include "tests/support/temporary_folder.h"
#include "update/file_inventory.h"
#include "update/inventory_header.h"
#include "update/release_channel.h"

namespace vorthmere::end_to_end {
namespace {

constexpr Milliseconds kPublisherLimit{60'000};

}  // namespace

ToolEnd runPublisher(const std::vector<std::string>& arguments, unsigned killAtCall) {
    const update::testing::TemporaryFolder folder;
    ProcessOptions options;
    options.outputFile = folder / "output";
    if (killAtCall != 0)
        options.environment = {"LD_PRELOAD=" KVN_KILL_AT_CALL, "KVN_KILL_AT_CALL=" + std::to_string(killAtCall)};
    const ProcessEnd end = ChildProcess(publisherCommand(arguments), options).wait(kPublisherLimit);
    return {end.exitCode, readFile(options.outputFile)};
}

std::filesystem::path publisherProgram() {
    return KVN_RELEASE;
}

bool publisherIsForWindows() {
    const char* const system = std::getenv("KVN_PUBLISHER");
    return system && std::string_view(system) == "windows";
}

std::vector<std::string> publisherCommand(const std::vector<std::string>& arguments) {
    if (publisherIsForWindows()) return windowsPublisherCommand(arguments);
    std::vector<std::string> command{publisherProgram()};
    command.insert(command.end(), arguments.begin(), arguments.end());
    return command;
}

std::vector<std::string> windowsPublisherCommand(const std::vector<std::string>& arguments) {
    const std::filesystem::path program = std::filesystem::path(KVN_WINDOWS_BUILD) / "kvn-release.exe";
    if (!exists(program)) throw std::runtime_error(program.string() + " is missing: build preset windows-test first");
    return wineCommand(program, arguments);
}

std::vector<std::string> buildArguments(std::uint32_t release, const std::filesystem::path& game,
                                        const std::filesystem::path& channel) {
    const ManifestText details;
    return {"build",
            "--release",
            std::to_string(release),
            "--version",
            details.version,
            "--protocol",
            details.protocol,
            "--notes",
            details.notes,
            "--from",
            game.string(),
            "--channel",
            channel.string(),
            "--allow-any-programs"};
}

std::vector<std::string> inventoriesThatLackObjects(const std::filesystem::path& channel) {
    std::vector<std::string> lacking;
    for (const auto& file : std::filesystem::directory_iterator(channel)) {
        if (file.path().extension() != update::kInventorySuffix) continue;
        const std::string text = readFile(file.path());
        update::Manifest header;
        std::vector<update::InventoryEntry> entries;
        std::string fault;
        if (!update::readInventoryHeader(text, header) || !update::parseFileInventory(text, header, entries, fault))
            throw std::runtime_error(file.path().string() + " cannot be read. " + fault);
        const bool lacksOne = std::any_of(entries.begin(), entries.end(), [&channel](const auto& entry) {
            return !exists(channel / update::objectName(entry.sha256));
        });
        if (lacksOne) lacking.push_back(file.path().filename());
    }
    return lacking;
}

ReleaseFiles publishedFiles(std::uint32_t release, const std::filesystem::path& game) {
    ReleaseFiles files;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(game))
        if (entry.is_regular_file())
            files[entry.path().lexically_relative(game).generic_string()].content = readFile(entry.path());
    return withReleaseMetadata(std::move(files), release);
}

}  // namespace vorthmere::end_to_end
