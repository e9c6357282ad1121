#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "tests/simulation/machine.h"

namespace vorthmere::update::simulation {

/// The calls of platform/, in the order of its headers.
enum class Operation : std::uint8_t {
    lastErrorNumber,
    entryAttributes,
    entryFacts,
    targetFacts,
    listFolder,
    fullPath,
    openForItsName,
    finalPath,
    createFolder,
    removeEmptyFolder,
    deleteFile,
    setAttributes,
    moveFile,
    copyFile,
    openToRead,
    createToWrite,
    readBytes,
    writeBytes,
    flushFile,
    closeFile,
    closeFileHandle,
    openPipe,
    startCaptured,
    startProgram,
    openProcess,
    waitForEnd,
    endProcess,
    exitCodeOf,
    systemFolder,
    closeProcessHandle,
    openSha256,
    digestMemorySize,
    beginDigest,
    digestBytes,
    finishDigest,
    closeDigest,
    closeDigestProvider,
    crackAddress,
    openSession,
    setTimeouts,
    connectTo,
    createSecureGet,
    disableRedirects,
    setHeader,
    sendRequest,
    receiveResponse,
    queryStatus,
    queryContentLength,
    queryDataAvailable,
    readData,
    closeInternetHandle,
};
inline constexpr std::size_t kOperations = static_cast<std::size_t>(Operation::closeInternetHandle) + 1;

[[nodiscard]] std::string_view nameOf(Operation operation);

/// One call that the program under test made.
struct Call {
    std::size_t number = 0;  ///< from 0, in the order of the run
    Operation operation = Operation::lastErrorNumber;
    std::string subject;       ///< a path, an address, a command line; "/" separated
    std::string second;        ///< the target of a move or a copy, a working folder
    std::uint32_t result = 0;  ///< Windows' number; 0 when it succeeded. An HTTP status, an exit code or a count of
                               ///< bytes for the calls that yield one
    bool isHarmed = false;     ///< the plan made it fail

    friend bool operator==(const Call&, const Call&) = default;
};

[[nodiscard]] std::string describe(const Call& call);

/// A way in which one call goes wrong.
struct Fault {
    /// Windows' number. With 0 the call reports success, and `effect` tells what is wrong with its answer (part: fewer
    /// bytes, fewer entries; none: nothing was done or read). For queryStatus the status, for exitCodeOf the code.
    std::uint32_t error = 0;
    bool always = false;           ///< from then on each call of the operation with the same subject
    Extent effect = Extent::none;  ///< what the call does all the same

    friend bool operator==(const Fault&, const Fault&) = default;
};

[[nodiscard]] std::string describe(const Fault& fault);

/// All faults that an operation can have by the rules of Windows, each once (`always` is false). See faults.cpp.
[[nodiscard]] std::span<const Fault> faultsOf(Operation operation);

/// The program under test is killed. `effect` is what its call still did; part: it was in the middle of it.
struct Kill {
    Extent effect = Extent::none;
    friend bool operator==(const Kill&, const Kill&) = default;
};

struct PowerLoss {
    Extent effect = Extent::none;
    std::vector<Fate> fates = {};  ///< of the unflushed files, by name; see FileSystem::losePower
};

using Action = std::variant<Fault, Kill, PowerLoss, Intrusion>;

[[nodiscard]] std::string describe(const Action& action);

/// When something happens: before the `number`-th (from 0) of the calls that match. A Fault, Kill or PowerLoss happens
/// to that call itself.
struct Trigger {
    std::optional<Operation> operation = {};  ///< none: any
    std::string subject = {};                 ///< empty: any; else without regard to case
    std::size_t number = 0;
};

struct PlannedAction {
    Trigger trigger;
    Action action;
};

using Plan = std::vector<PlannedAction>;

[[nodiscard]] std::string describe(const PlannedAction& planned);

/// Thrown out of the call at which the program was killed or the power went, and out of each call after it. Closings
/// cannot throw; after one of them the next other call throws. A program that makes no other call may end by itself, so
/// ask Machine::isFrozen(), too.
struct Crashed {};

/// Acts before and after every call of platform/: counts it, records it, and does what the plan says.
class Gate {
public:
    Gate(Machine& machine, Plan plan);

    [[nodiscard]] const std::vector<Call>& calls() const {
        return calls_;
    }
    [[nodiscard]] const Plan& plan() const {
        return plan_;
    }

    /// How often the n-th action of the plan happened.
    [[nodiscard]] std::size_t timesMet(std::size_t n) const {
        return progress_[n].met;
    }
    [[nodiscard]] bool metAll() const;

    /// The error of the other program at the n-th action of the plan; only for an Intrusion that was met.
    [[nodiscard]] Error answerTo(std::size_t n) const {
        return progress_[n].answer;
    }

    [[nodiscard]] Machine& machine() {
        return machine_;
    }

    // For passage.h.

    struct Verdict {
        const Fault* fault = nullptr;   ///< harms this call
        Extent extent = Extent::whole;  ///< how much of the call is done
        const Action* end = nullptr;    ///< a Kill or a PowerLoss at this call
    };
    [[nodiscard]] Verdict before(Operation operation, std::string subject, std::string second);

    /// Records the result, and ends the process when the verdict says so.
    ///
    /// @return false when the process has ended
    bool after(const Verdict& verdict, std::uint32_t result);

private:
    /// The calls that a lasting fault keeps harming.
    struct Lasting {
        bool isOn = false;
        Operation operation = Operation::lastErrorNumber;
        std::string subject;
    };
    struct Progress {
        std::size_t seen = 0;
        std::size_t met = 0;
        Error answer = error::none;
        Lasting lasting;
    };
    [[nodiscard]] static bool isDue(const Trigger& trigger, const Call& call, Progress& progress);
    void decide(const Action& action, const Call& call, Progress& progress, Verdict& verdict);

    Machine& machine_;
    Plan plan_;
    std::vector<Progress> progress_;
    std::vector<Call> calls_;
};

/// While it lives, the calls of platform/ in this program go through this gate. Only one may live at a time.
class Running {
public:
    explicit Running(Gate& gate);
    ~Running();
    Running(const Running&) = delete;
    Running& operator=(const Running&) = delete;
};

}  // namespace vorthmere::update::simulation
