#pragma once

namespace vorthmere::update {

/// Ends the process at once with kAbnormalExitCode. The handler for std::terminate in every thread: the C library's own
/// would show a message box first, which no error mode keeps away, and the run would wait for somebody to close it.
[[noreturn]] void endAbnormally() noexcept;

}  // namespace vorthmere::update
