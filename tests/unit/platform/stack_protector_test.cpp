#include <gtest/gtest.h>
#include <windows.h>

#include <cstddef>

namespace {

// Overwrites what the protector put after the array, and no more: the callers' frames, in which Windows looks for
// handlers, stay whole. Size and pointer are volatile, so that the compiler neither sees the mistake nor removes it.
[[gnu::noinline]] void writeBehindTheEndOfALocalArray() {
    volatile char array[16];
    volatile char* volatile target = array;
    const volatile std::size_t size = sizeof(array) + 2 * sizeof(void*);
    for (std::size_t i = 0; i < size; ++i)
        target[i] = 'x';
}

// The protector ends the program by an illegal instruction. Without it the program continues or jumps elsewhere.
bool endedByTheProtector(int exitCode) {
    return static_cast<DWORD>(exitCode) == EXCEPTION_ILLEGAL_INSTRUCTION;
}

TEST(StackProtector, EndsTheProgramWhenALocalArrayWasOverrun) {
    EXPECT_EXIT(writeBehindTheEndOfALocalArray(), endedByTheProtector, "");
}

}  // namespace
