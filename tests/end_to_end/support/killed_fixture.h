#pragma once

#include "tests/end_to_end/support/base_fixture.h"

namespace vorthmere::end_to_end {

/// The events of the file system that are counted up to the moment of the kill.
enum class Clock {
    run,           ///< all in the installation and the work folder: the whole run
    installation,  ///< files that move in the installation: the time in which it is not whole
};

/// Kills runs of the updater and checks what they leave. Before the installation begins, nothing may have changed.
/// After that, every file of both releases must still exist, and the next run, or the recovery that the README
/// describes, must lead to a whole release.
class KilledTest : public EndToEndTest {
protected:
    KilledTest();

    /// Kills one run after another, at moments spread evenly over the run.
    void killRuns(Source source, Clock clock, int runs);

private:
    void watchWith(FolderWatch& watch, Clock clock) const;
    static bool takeEvent(FolderWatch& watch, Clock clock);
    int countEvents(Source source, Clock clock);
    bool killAt(Source source, Clock clock, int moment);
    void waitUntilQuiet() const;
    void expectNothingLost(const TreeSnapshot& before);
    void expectNextRunCompletes(Source source);
    void expectRecovery(Source source);

    int interrupted_ = 0;  ///< runs that left neither of the two releases whole
};

}  // namespace vorthmere::end_to_end
