#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace vorthmere::end_to_end {

/// One call of the platform by a program.
struct TracedCall {
    double time = 0;        ///< in seconds
    std::string function;   ///< such as "user32.SetTimer"
    std::string arguments;  ///< in hexadecimal, separated by commas; a text after its address
    std::string result;     ///< in hexadecimal; empty when the call never returned

    /// The quoted texts among the arguments, "\n" for a line break.
    [[nodiscard]] std::vector<std::string> texts() const;

    /// The arguments that are no texts, as numbers.
    [[nodiscard]] std::vector<unsigned long> numbers() const;
};

/// Wine prints a line for the start and the end of every call of a traced function. scripts/wine-prefix names these
/// functions. The program itself is unchanged.
class CallTrace {
public:
    /// The environment that makes Wine trace a program. The trace goes to the program's standard error.
    static constexpr char kEnvironment[] = "WINEDEBUG=+timestamp,+pid,+relay";

    /// Reads the calls that a process made from its program's own code, in order.
    ///
    /// @param processId in hexadecimal, four digits or more; empty for the calls of all processes
    CallTrace(const std::filesystem::path& traceFile, const std::string& processId);

    [[nodiscard]] const std::vector<TracedCall>& calls() const {
        return calls_;
    }

    [[nodiscard]] std::vector<TracedCall> callsOf(const std::string& function) const;

private:
    std::vector<TracedCall> calls_;
};

/// The steps that the progress window showed, as "status: <text>", "detail: <text>" and "bar: <position>", in order.
/// The texts that the controls are created with are not among them.
[[nodiscard]] std::vector<std::string> stepsShown(const CallTrace& trace);

}  // namespace vorthmere::end_to_end
