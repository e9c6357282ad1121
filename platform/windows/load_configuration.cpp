// The table that tells Windows how to load the program, in the size that it has in 64-bit Windows 8. The linker finds
// it by its name. It is declared here because not every SDK's headers name the field that matters.
#include <windows.h>

#include <array>
#include <cstddef>
#include <cstdint>

namespace {

struct LoadConfiguration {
    std::uint32_t size;
    std::array<std::uint16_t, 37> unused;
    std::uint16_t dependentLoadFlags;
    std::array<std::uint64_t, 4> alsoUnused;
};

static_assert(offsetof(LoadConfiguration, dependentLoadFlags) == 0x4E && sizeof(LoadConfiguration) == 0x70);

}  // namespace

extern "C" const LoadConfiguration _load_config_used;

constexpr LoadConfiguration _load_config_used{sizeof(LoadConfiguration), {}, LOAD_LIBRARY_SEARCH_SYSTEM32, {}};
