#pragma once

namespace vorthmere::publish {

/// True when standard output is a terminal.
[[nodiscard]] bool outputIsTerminal();

/// Columns of the terminal; 80 when it does not tell.
[[nodiscard]] unsigned outputWidth();

}  // namespace vorthmere::publish
