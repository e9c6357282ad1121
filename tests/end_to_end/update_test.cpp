#include <gmock/gmock.h>

#include "tests/end_to_end/support/base_fixture.h"
#include "tests/end_to_end/support/files.h"
#include "tests/end_to_end/support/sample_release.h"
#include "tests/support/report_fields.h"

namespace vorthmere::end_to_end {
namespace {

using testing::ElementsAre;
using update::testing::reports;

class UpdateTest : public EndToEndTest {};

TEST_F(UpdateTest, IncrementalUpdateInstallsTheNewRelease) {
    EXPECT_EQ(runUpdater(Source::incremental), 0);
    expectRelease42();
    EXPECT_THAT(workFolderContent(), ElementsAre("backup", "inventory.txt", "transfer.txt"));
    EXPECT_THAT(transferReport(), reports({{"mode", "incremental"}}));
}

TEST_F(UpdateTest, CompletePackageInstallsTheNewRelease) {
    EXPECT_EQ(runUpdater(Source::completePackage), 0);
    expectRelease42();
    EXPECT_THAT(workFolderContent(), ElementsAre("backup", "transfer.txt"));
    EXPECT_THAT(transferReport(), reports({{"mode", "full"}}));
}

}  // namespace
}  // namespace vorthmere::end_to_end
