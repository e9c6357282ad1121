#include <filesystem>
#include <stdexcept>

#include "bench/program/path_list.h"
#include "bench/program/stopwatch.h"
#include "bench/program/subcommands.h"
#include "install/extracted_tree.h"
#include "install/install_with_backup.h"
#include "update/text.h"

namespace vorthmere::bench {

void installFigure(Arguments arguments) {
    const std::filesystem::path folder(arguments[0]);
    const std::vector<std::string> paths = readPaths(arguments[1]);
    std::wstring error;
    const Stopwatch stopwatch;
    const bool succeeded =
        update::installWithBackup(folder / "game", folder / "staging", folder / "backup", paths, paths, error);
    const double seconds = stopwatch.seconds();
    if (!succeeded) throw std::runtime_error(update::narrow(error));
    printSeconds(seconds);
}

void inspectFigure(Arguments arguments) {
    update::ExtractedFiles files;
    std::wstring error;
    const Stopwatch stopwatch;
    const bool succeeded = update::inspectExtractedTree(arguments[0], files, error);
    const double seconds = stopwatch.seconds();
    if (!succeeded) throw std::runtime_error(update::narrow(error));
    printSeconds(seconds);
}

}  // namespace vorthmere::bench
