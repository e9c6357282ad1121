#include "tests/traces/traced_calls.h"

// The copy of the platform reads these pointers instead of its import table. Calls that the headers do not declare as
// imported jump through them.
#define KVN_DEFINE_TRACED(call) decltype(&::call) traced_##call = &::call;
#define KVN_DEFINE_JUMP(call) asm(".text\n.globl jump_" #call "\njump_" #call ":\n    jmp *traced_" #call "(%rip)\n");
extern "C" {
KVN_TRACED_CALLS(KVN_DEFINE_TRACED, KVN_DEFINE_TRACED)
}
#define KVN_NOTHING(call)
KVN_TRACED_CALLS(KVN_NOTHING, KVN_DEFINE_JUMP)

namespace vorthmere::update::traces {
Log& log() {
    static Log log;
    return log;
}

}  // namespace vorthmere::update::traces
