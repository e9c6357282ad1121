#pragma once

#include <string>
#include <vector>

#include "tests/simulation/explorer/documented_failures.h"
#include "tests/simulation/explorer/scenario.h"

namespace vorthmere::update::simulation {

/// What holds after every update, whatever happened meanwhile.
///
///  1 untouched: what no list names, and all outside the installation, keeps its content, its attributes and the case
///    of its name; no folder comes or goes. The work folder is the updater's own.
///  2 kept: each old file is in the installation or in the backup until the new release is whole, and afterwards. From
///    the first move on, each new file is in the staging folder or in the installation.
///  3 told: the code says what is installed. 0: exactly the new release, letter case included. 10 to 26: nothing in the
///    installation changed. 27, 28: the old release, to the last folder; 28 with the sentence that the previous build
///    could not be restored: the new release.
///  4 documented: code and sentence are a pair of docs/failures.md, and the one that fits where a single fault was met
///    (fitting_sentences.h). An exception is one of a status query.
///  5 reported: a fault that was met does not end in 0, except where absorbed_faults.h says why.
///  6 returned: the run ends, leaves no handle open and no child running (unless the call that waits for it or ends it
///    failed), and closes nothing twice.
///  7 steady: the number of calls grows with the number of files and no faster. The percentage never falls, except
///    where the complete package is begun.
///  8 converges: the next run, unharmed, completes, or ends with 10 and changes nothing.
///  9 recoverable: after any end in between, the steps of README.md bring each old file back, and an update after them
///    completes.
/// 10 undisturbed: without a plan everything is as expected_run.h says.
///
/// What is promised depends on the plan: where the way back itself was harmed, the files that its failed calls named
/// may be elsewhere (2 holds all the same); what other programs changed is theirs.
struct Breach {
    std::string invariant;  ///< "1 untouched"
    std::string subject;    ///< the path that it is about, as a key; may be empty
    std::string what;
};

/// Invariants 1 to 7.
[[nodiscard]] std::vector<Breach> brokenInvariants(const Outcome& outcome, const DocumentedFailures& documented);

/// Paths that other programs of the plan changed, as keys; what lies below them counts as well. A folder that was made
/// where a file is to be moved aside changes nothing.
[[nodiscard]] std::vector<std::string> changedByOthers(const Outcome& outcome);

/// True when the outcome's code says that the new release is installed.
[[nodiscard]] bool saysNewRelease(const Outcome& outcome);

/// The most calls that an update between these releases may take.
[[nodiscard]] std::size_t mostCalls(const ReleasePair& releases);

inline constexpr std::string_view kNotRestored = " The previous build also could not be restored automatically.";

}  // namespace vorthmere::update::simulation
