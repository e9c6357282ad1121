#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>

#include "platform/failure.h"
#include "tests/simulation/gate.h"

namespace vorthmere::update::simulation {

// Leads the calls of platform/ through the gate of the machine that runs.

/// The gate of the Running object that lives. The program must not make calls without one.
[[nodiscard]] Gate& currentGate();
[[nodiscard]] bool isAnyRunning();

/// UTF-8, "/" separated.
[[nodiscard]] std::string textOf(const std::filesystem::path& path);
/// The same for a call that takes paths literally: a path with a name that Windows would alter in its plain form ("a.",
/// "NUL .txt") gets the extended form.
[[nodiscard]] std::string systemTextOf(const std::filesystem::path& path);
[[nodiscard]] std::string narrowOf(std::wstring_view text);
[[nodiscard]] std::wstring wideOf(std::string_view text);
[[nodiscard]] std::filesystem::path pathOf(std::string_view text);

[[nodiscard]] inline std::error_code toFailure(Error error) {
    return error == error::none ? std::error_code() : failureOf(error);
}

[[nodiscard]] inline void* toHandle(HandleId id) {
    return reinterpret_cast<void*>(static_cast<std::uintptr_t>(id));
}

[[nodiscard]] inline HandleId toId(void* handle) {
    return static_cast<HandleId>(reinterpret_cast<std::uintptr_t>(handle));
}

/// No program under test makes so many calls.
inline constexpr std::size_t kCallsWithoutEnd = 200000;

/// Makes one call.
///
/// @param work    does as much of the call as the extent says: Error(Machine&, Extent)
/// @param yielded what the call yields, when the log is to show it
/// @return the error for the caller
/// @throws Crashed, Hung
template <typename Work>
Error pass(Operation operation, std::string subject, std::string second, Work work,
           const std::uint32_t* yielded = nullptr) {
    Gate& gate = currentGate();
    Machine& machine = gate.machine();
    if (machine.isFrozen()) throw Crashed{};
    if (gate.calls().size() >= kCallsWithoutEnd) {
        machine.killCaller();
        throw Hung{"it calls and calls"};
    }
    const Gate::Verdict verdict = gate.before(operation, std::move(subject), std::move(second));
    Error result = error::none;
    try {
        if (verdict.extent != Extent::none) result = work(machine, verdict.extent);
    } catch (const Hung&) {
        machine.killCaller();
        throw;
    }
    if (verdict.fault != nullptr) result = verdict.fault->error;
    if (result != error::none) machine.lastError = result;
    const bool showsYield = result == error::none && yielded != nullptr;
    if (!gate.after(verdict, showsYield ? *yielded : result)) throw Crashed{};
    return result;
}

/// Makes a call that is done whole or not at all: Error(Machine&).
template <typename Work>
Error passWhole(Operation operation, std::string subject, std::string second, Work work,
                const std::uint32_t* yielded = nullptr) {
    return pass(
        operation, std::move(subject), std::move(second),
        [&work](Machine& machine, Extent extent) { return extent == Extent::whole ? work(machine) : error::none; },
        yielded);
}

/// Makes a closing: bool(Machine&), false when there was nothing to close. Does nothing once the process has ended.
template <typename Work>
void passClosing(Operation operation, std::string subject, Work work) noexcept {
    if (!isAnyRunning() || currentGate().machine().isFrozen()) return;
    Gate& gate = currentGate();
    const Gate::Verdict verdict = gate.before(operation, std::move(subject), "");
    const bool wasOpen = work(gate.machine());
    if (!wasOpen) ++gate.machine().wrongHandles;
    (void)gate.after(verdict, wasOpen ? error::none : error::invalidHandle);
}

/// Makes a call that opens a file: Error(Machine&, HandleId&). If the call has to fail after it opened the file, the
/// file is closed.
template <typename Handle, typename Work>
Handle passOpening(Operation operation, const std::string& subject, std::error_code& failure, Work work) {
    HandleId file = 0;
    failure = toFailure(passWhole(operation, subject, "", [&](Machine& machine) { return work(machine, file); }));
    if (failure && file != 0) (void)currentGate().machine().files.close(std::exchange(file, 0));
    return Handle(toHandle(file));
}

/// The path that a file was opened by, or "a pipe".
[[nodiscard]] std::string fileNameOf(void* file);

}  // namespace vorthmere::update::simulation
