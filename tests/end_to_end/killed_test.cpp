#include "tests/end_to_end/support/killed_fixture.h"

namespace vorthmere::end_to_end {
namespace {

TEST_F(KilledTest, InAnIncrementalUpdate) {
    killRuns(Source::incremental, Clock::run, 12);
}

TEST_F(KilledTest, InAnUpdateFromTheCompletePackage) {
    killRuns(Source::completePackage, Clock::run, 12);
}

TEST_F(KilledTest, InTheMiddleOfTheInstallation) {
    killRuns(Source::incremental, Clock::installation, 12);
}

}  // namespace
}  // namespace vorthmere::end_to_end
