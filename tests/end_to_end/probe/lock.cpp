#include <cstdio>
#include <vector>

#include "tests/end_to_end/probe/subcommands.h"
#include "tests/support/windows_handle.h"

namespace vorthmere::probe {

int lock(Arguments arguments) {
    std::vector<update::testing::OpenFile> files;
    for (const std::wstring& name : arguments) {
        files.emplace_back(CreateFileW(name.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr));
        if (!files.back()) {
            std::fprintf(stderr, "cannot lock %ls: error %lu\n", name.c_str(), GetLastError());
            return 1;
        }
    }
    std::puts("locked");
    std::fflush(stdout);
    while (std::getchar() != EOF) {
    }
    return 0;
}

}  // namespace vorthmere::probe
