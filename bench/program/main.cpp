#include <array>
#include <cstdio>
#include <exception>
#include <string_view>
#include <vector>

#include "bench/program/subcommands.h"

namespace {

using namespace vorthmere::bench;

constexpr int kUsageError = 64;

struct Subcommand {
    std::wstring_view name;
    std::size_t fewestArguments;
    void (*run)(Arguments arguments);
};

constexpr std::array kSubcommands = {
    Subcommand{L"archive-floor", 2, archiveFloor},
    Subcommand{L"copy", 2, copyFloor},
    Subcommand{L"digest", 2, digestFloor},
    Subcommand{L"download", 3, downloadFigure},
    Subcommand{L"download-floor", 2, downloadFloor},
    Subcommand{L"idle", 0, idle},
    Subcommand{L"inspect", 1, inspectFigure},
    Subcommand{L"install", 2, installFigure},
    Subcommand{L"moves", 2, movesFloor},
    Subcommand{L"parse", 1, parseFigures},
    Subcommand{L"staging-floor", 3, stagingFloor},
    Subcommand{L"time", 1, timeProgram},
};

}  // namespace

int wmain(int argc, wchar_t* argv[]) {
    const std::vector<std::wstring> arguments(argv + (argc < 2 ? argc : 2), argv + argc);
    for (const Subcommand& subcommand : kSubcommands) {
        if (argc < 2 || subcommand.name != argv[1] || arguments.size() < subcommand.fewestArguments) continue;
        try {
            subcommand.run(arguments);
            return 0;
        } catch (const std::exception& failure) {
            std::fprintf(stderr, "kvn_bench %ls: %s\n", argv[1], failure.what());
            return 1;
        }
    }
    std::fputs("usage: kvn_bench SUBCOMMAND ARGUMENT...\n", stderr);
    return kUsageError;
}
