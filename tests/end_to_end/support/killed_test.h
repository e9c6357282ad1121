#pragma once

#include "tests/end_to_end/support/base_test.h"

namespace vorthmere::end_to_end {

/// Which events of the file system count the way to the moment at which the updater is killed.
enum class Clock {
    run,           ///< all in the installation and the work folder: the whole run
    installation,  ///< files that move in the installation: the time in which it is not whole
};

/// Kills runs of the updater and looks at what they leave behind. Before the installation has begun nothing may be
/// changed; from then on every file of both releases must still exist, and the next run, or the recovery that the
/// README describes, must lead to a whole release.
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

    int interrupted_ = 0;  ///< runs that left the installation neither the one nor the other release
};

}  // namespace vorthmere::end_to_end
