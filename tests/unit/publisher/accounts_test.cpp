// File modes and accounts, which Windows does not have in this form.

#include <gmock/gmock.h>
#include <sys/stat.h>

#include <sstream>

#include "publisher/durable_files.h"
#include "publisher/update_plan.h"
#include "tests/unit/publisher/no_privileges.h"
#include "tests/unit/publisher/publishing.h"

namespace vorthmere::publish::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::HasSubstr;

class AccountsTest : public PublishingTest {
protected:
    std::string refusedPlanFrom(const fs::path& from) const {
        std::ostringstream output;
        Console console(output, false);
        UpdatePlan plan;
        std::string error;
        EXPECT_FALSE(planUpdate(from, channel, console, plan, error));
        return error;
    }
};

TEST_F(AccountsTest, EveryAccountMayReadTheChannelWhateverTheUmask) {
    ReleaseRequest wanted = request(42);
    wanted.channel = folder / "served/downloads";
    const mode_t before = umask(077);
    const std::string refusal = refusalOf(wanted);
    umask(before);
    ASSERT_EQ(refusal, "");
    const auto modeOf = [](const fs::path& path) { return static_cast<unsigned>(fs::status(path).permissions()); };
    EXPECT_EQ(modeOf(folder / "served"), 0755u);
    EXPECT_EQ(modeOf(wanted.channel), 0755u);
    for (const fs::directory_entry& file : fs::directory_iterator(wanted.channel))
        EXPECT_EQ(modeOf(file.path()), 0644u) << file.path();
}

TEST_F(AccountsTest, FileThatMayNotBeReadHasTheReason) {
    fs::permissions(folder.path(), static_cast<fs::perms>(0755));
    fs::permissions(game / "data/level one.pak", fs::perms::none);
    std::string refusal;
    {
        const NoPrivileges account;
        refusal = refusalOf(42);
    }
    EXPECT_THAT(refusal, HasSubstr("data/level one.pak\" cannot be read: Permission denied."));
}

TEST_F(AccountsTest, InstallationThatMayNotBeReadIsNamed) {
    publish(42);
    fs::permissions(folder.path(), static_cast<fs::perms>(0755));
    fs::permissions(game / "data/sound", static_cast<fs::perms>(0444));
    std::string refusal;
    {
        const NoPrivileges account;
        refusal = refusedPlanFrom(game);
    }
    fs::permissions(game / "data/sound", static_cast<fs::perms>(0755));
    EXPECT_THAT(refusal,
                ::testing::MatchesRegex("\"/.*/data/sound/.*theme.ogg\" cannot be read: Permission denied\\."));
}

TEST_F(AccountsTest, ChannelThatMayNotBeReadIsNoChannelThatTheUpdaterRefuses) {
    publish(42);
    fs::permissions(folder.path(), static_cast<fs::perms>(0755));
    fs::permissions(channel, static_cast<fs::perms>(0444));
    std::string refusal;
    {
        const NoPrivileges account;
        refusal = refusedPlanFrom(game);
    }
    fs::permissions(channel, static_cast<fs::perms>(0755));
    EXPECT_EQ(refusal, "\"KVN-alpha.manifest\" cannot be read: Permission denied.");
}

TEST_F(AccountsTest, NewFoldersInheritTheGroupAndOldOnesKeepTheirPermissions) {
    constexpr fs::perms own = fs::perms::owner_all | fs::perms::set_gid;
    fs::permissions(folder.path(), own);
    std::string error;
    std::vector<fs::path> made;
    ASSERT_TRUE(createFolders(folder / "served/downloads/", made, error)) << error;
    EXPECT_THAT(made, ::testing::ElementsAre(folder / "served", folder / "served/downloads"));
    constexpr auto everybodys = static_cast<fs::perms>(0755) | fs::perms::set_gid;
    EXPECT_EQ(fs::status(folder / "served").permissions(), everybodys);
    EXPECT_EQ(fs::status(folder / "served/downloads").permissions(), everybodys);
    EXPECT_EQ(fs::status(folder.path()).permissions(), own);
}

}  // namespace
}  // namespace vorthmere::publish::testing
