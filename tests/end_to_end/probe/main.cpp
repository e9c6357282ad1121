#include <array>
#include <cstdio>
#include <string_view>
#include <vector>

#include "tests/end_to_end/probe/subcommands.h"

namespace {

using namespace vorthmere::probe;

struct Subcommand {
    std::wstring_view name;
    int (*run)(Arguments arguments);
};

constexpr std::array kSubcommands = {
    Subcommand{L"download", download},
    Subcommand{L"download-loop", downloadLoop},
    Subcommand{L"idle", idle},
    Subcommand{L"lock", lock},
    Subcommand{L"message-box", messageBox},
    Subcommand{L"outcome", outcome},
    Subcommand{L"run", run},
    Subcommand{L"trust", trust},
    Subcommand{L"window", window},
};

}  // namespace

int wmain(int argc, wchar_t* argv[]) {
    const std::vector<std::wstring> arguments(argv + (argc < 2 ? argc : 2), argv + argc);
    for (const Subcommand& subcommand : kSubcommands)
        if (argc > 1 && subcommand.name == argv[1]) return subcommand.run(arguments);
    std::fputs("usage: kvn_probe SUBCOMMAND [ARGUMENT...]\n", stderr);
    return kUsageError;
}
