#include "install/installation_check.h"

#include "tests/simulation/core/bench.h"

namespace vorthmere::update::simulation {
namespace {

class InstallationCheckTest : public CoreTest {
protected:
    InstallationCheckTest() {
        for (const char* name : {"Vorthmere.exe", "KVNUpdater.exe", "KVN_MANAGED_FILES.txt"})
            machine.files.putFile("C:/Game/" + std::string(name), contentOf(name));
        machine.files.putReparsePoint("C:/Link", tag::junction, "C:/Game", true);
    }

    bool check(const std::string& path) {
        folder = path;
        return checkInstallation(folder, error);
    }

    std::filesystem::path folder;
};

TEST_F(InstallationCheckTest, TheFolderIsNamedAsItIs) {
    for (const std::string path : {"C:/Game", "c:/game/", "C:/Test/../Game", "C:/Link"}) {
        EXPECT_TRUE(check(path)) << path;
        EXPECT_EQ(folder, "C:/Game") << path;
    }
}

// The path is resolved, so that no link is left in it. Other reparse points are what they stand for.
TEST_F(InstallationCheckTest, AFolderThatIsAReparsePointOfAnyKindIsRefused) {
    Entry& entry = machine.files.disk.at(machine.files.entryOf("C:/Game"));
    entry.attributes |= attribute::reparsePoint;
    entry.reparseTag = tag::cloudFile;
    EXPECT_FALSE(check("C:/Game"));
    EXPECT_EQ(error, L"This is not a writable Kelvane portable installation.");
}

TEST_F(InstallationCheckTest, AFolderThatIsNoInstallationIsRefusedUnderItsOwnName) {
    EXPECT_FALSE(check("c:/test"));
    EXPECT_EQ(folder, "C:/Test");
    EXPECT_FALSE(check("C:/Game/Vorthmere.exe"));
    EXPECT_FALSE(check(""));
    machine.files.erase("C:/Game/KVNUpdater.exe");
    EXPECT_FALSE(check("C:/Game"));
}

TEST_F(InstallationCheckTest, AnEmptyPathIsNotAskedFor) {
    EXPECT_FALSE(check(""));
    EXPECT_THAT(callsOf(Operation::entryFacts), ::testing::IsEmpty());
}

TEST_F(InstallationCheckTest, AStatusThatCannotBeToldNamesTheFolderItself) {
    harm(Operation::entryFacts, {.error = 5});
    try {
        static_cast<void>(check("C:/Game"));
        FAIL() << "nothing thrown";
    } catch (const std::filesystem::filesystem_error& thrown) {
        EXPECT_EQ(thrown.path1(), "C:/Game");
    }
}

}  // namespace
}  // namespace vorthmere::update::simulation
