#include <filesystem>

#include "bench/program/path_list.h"
#include "bench/program/require.h"
#include "bench/program/stopwatch.h"
#include "bench/program/subcommands.h"

namespace vorthmere::bench {
namespace {

constexpr DWORD kFlags = MOVEFILE_REPLACE_EXISTING | MOVEFILE_COPY_ALLOWED;

struct Move {
    std::filesystem::path from;
    std::filesystem::path to;
};

}  // namespace

void movesFloor(Arguments arguments) {
    const std::filesystem::path folder(arguments[0]);
    const std::vector<std::string> paths = readPaths(arguments[1]);
    std::vector<Move> moves;
    for (const std::string& path : paths)
        moves.push_back({folder / "game" / path, folder / "backup" / path});
    for (const std::string& path : paths)
        moves.push_back({folder / "staging" / path, folder / "game" / path});

    const Stopwatch stopwatch;
    for (const Move& move : moves)
        require(MoveFileExW(move.from.c_str(), move.to.c_str(), kFlags), "moving a file");
    printSeconds(stopwatch.seconds());
}

}  // namespace vorthmere::bench
