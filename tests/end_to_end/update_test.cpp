#include <gmock/gmock.h>

#include "tests/end_to_end/support/base_fixture.h"
#include "tests/end_to_end/support/files.h"
#include "tests/end_to_end/support/sample_release.h"

namespace vorthmere::end_to_end {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

class UpdateTest : public EndToEndTest {};

TEST_F(UpdateTest, IncrementalUpdateInstallsTheNewRelease) {
    EXPECT_EQ(runUpdater(Source::incremental), 0);
    expectRelease42();
    EXPECT_THAT(workFolderContent(), ElementsAre("backup", "inventory.txt", "transfer.txt"));
    EXPECT_THAT(transferReport(), HasSubstr("mode=incremental\r\n"));
}

TEST_F(UpdateTest, CompletePackageInstallsTheNewRelease) {
    EXPECT_EQ(runUpdater(Source::completePackage), 0);
    expectRelease42();
    EXPECT_THAT(workFolderContent(), ElementsAre("backup", "transfer.txt"));
    EXPECT_EQ(transferReport(), "mode=full\r\nbytes=" + scenario.release.manifestText.size + "\r\n");
}

}  // namespace
}  // namespace vorthmere::end_to_end
