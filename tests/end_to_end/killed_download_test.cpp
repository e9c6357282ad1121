#include "tests/end_to_end/support/channel.h"
#include "tests/end_to_end/support/killed_fixture.h"

namespace vorthmere::end_to_end {
namespace {

class KilledDownloadTest : public KilledTest {
protected:
    PlainChannel channel{scenario.release.folder};
};

TEST_F(KilledDownloadTest, OfSingleFiles) {
    killRuns(Source::channel, Clock::run, 5);
}

TEST_F(KilledDownloadTest, OfTheCompletePackage) {
    std::filesystem::remove(scenario.release.inventory);
    killRuns(Source::channel, Clock::run, 5);
}

}  // namespace
}  // namespace vorthmere::end_to_end
