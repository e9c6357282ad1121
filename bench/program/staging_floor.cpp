#include <filesystem>
#include <optional>

#include "bench/program/digest.h"
#include "bench/program/path_list.h"
#include "bench/program/plain_get.h"
#include "bench/program/require.h"
#include "bench/program/stopwatch.h"
#include "bench/program/subcommands.h"
#include "update/text.h"

namespace vorthmere::bench {
namespace {

void fetch(PlainGet& channel, const std::string& name, const std::filesystem::path& target) {
    const update::testing::OpenFile file(
        CreateFileW(target.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
    require(static_cast<bool>(file), "creating a fetched file");
    channel.get(update::widen(name), [&file](const char* bytes, DWORD count) {
        DWORD written = 0;
        require(WriteFile(file.get(), bytes, count, &written, nullptr), "writing a fetched file");
    });
}

}  // namespace

void stagingFloor(Arguments arguments) {
    const std::filesystem::path source(arguments[0]);
    const std::filesystem::path target(arguments[1]);
    const std::vector<ListedFile> files = readList(arguments[2]);
    std::optional<PlainGet> channel;
    if (arguments.size() > 3) channel.emplace(arguments[3]);

    Digester digester;
    for (const ListedFile& file : files)
        digester.digest(source / file.path);
    for (const ListedFile& file : files) {
        const std::filesystem::path copy = target / file.path;
        if (file.objectName.empty())
            require(CopyFileW((source / file.path).c_str(), copy.c_str(), TRUE), "copying a file");
        else
            fetch(channel.value(), file.objectName, copy);
        digester.digest(copy);
    }
}

void digestFloor(Arguments arguments) {
    const std::filesystem::path folder(arguments[0]);
    const std::vector<ListedFile> files = readList(arguments[1]);
    const Stopwatch stopwatch;
    Digester digester;
    for (const ListedFile& file : files)
        digester.digest(folder / file.path);
    printSeconds(stopwatch.seconds());
}

void copyFloor(Arguments arguments) {
    const Stopwatch stopwatch;
    require(CopyFileW(arguments[0].c_str(), arguments[1].c_str(), FALSE), "copying a file");
    printSeconds(stopwatch.seconds());
}

}  // namespace vorthmere::bench
