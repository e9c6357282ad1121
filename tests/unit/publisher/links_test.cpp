#include <gmock/gmock.h>

#include <sstream>

#include "publisher/channel_listing.h"
#include "publisher/durable_files.h"
#include "publisher/update_plan.h"
#include "tests/support/folder_link.h"
#include "tests/unit/publisher/publishing.h"

namespace vorthmere::publish::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::HasSubstr;
using update::testing::Link;
using update::testing::writeFile;

class LinksTest : public PublishingTest {
protected:
    /// Plans an update from the game folder and returns the sentence of a failure; "" when there was none.
    [[nodiscard]] std::string refusedPlanFromGame() const {
        std::ostringstream output;
        Console console(output, false);
        UpdatePlan plan;
        std::string error;
        const bool planned = planUpdate(game, channel, console, plan, error);
        EXPECT_EQ(planned, error.empty());
        return error;
    }
};

TEST_F(LinksTest, FolderInAGameThatIsALinkIsRefused) {
    const Link link(game / "data/more", game / "data/sound");
    EXPECT_THAT(refusalOf(42), HasSubstr("\"data/more\" is a symbolic link"));
    EXPECT_FALSE(fs::exists(channel));
}

TEST_F(LinksTest, LinkOnTheWayToAFileOfTheReleaseIsRefused) {
    publish(42);
    fs::rename(game / "data/sound", folder / "elsewhere");
    const Link link(game / "data/sound", folder / "elsewhere");
    EXPECT_THAT(refusedPlanFromGame(), HasSubstr("\"data/sound\" is a symbolic link"));
}

// Wine removes the target of a link instead of the link, and shows a link to a file as a file.
#ifndef _WIN32

TEST_F(LinksTest, LinkBesideTheFilesOfAnInstallationDoesNotMatter) {
    publish(42);
    const Link link(game / "saves", game / "data/sound");
    const Link toFile(game / "data/link", game / "Vorthmere.exe");
    EXPECT_EQ(refusedPlanFromGame(), "");
}

TEST_F(LinksTest, LinkInTheWorkFolderIsRemovedWithoutWhatItLeadsTo) {
    publish(41);
    fs::create_directory(channel / kWorkFolderName);
    const Link link(channel / kWorkFolderName / "link", game);
    publish(42);
    EXPECT_FALSE(fs::exists(channel / kWorkFolderName));
    EXPECT_TRUE(fs::exists(game / "Vorthmere.exe"));
}

TEST_F(LinksTest, ChannelInsideTheGameFolderIsRefusedThroughALinkToo) {
    const Link link(folder / "link", game);
    ReleaseRequest wanted = request(42);
    wanted.channel = folder / "link/channel";
    EXPECT_THAT(refusalOf(wanted), HasSubstr("must lie apart"));
}

TEST_F(LinksTest, LinkThatLeadsNowhereIsNoFolder) {
    const Link link(folder / "link", folder / "nowhere");
    std::vector<fs::path> made;
    std::string error;
    EXPECT_FALSE(createFolders(folder / "link", made, error));
    EXPECT_THAT(made, ::testing::IsEmpty());
}

#endif

}  // namespace
}  // namespace vorthmere::publish::testing
