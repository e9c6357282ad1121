#include "install/install_with_backup.h"

#include "tests/simulation/core/bench.h"

namespace vorthmere::update::simulation {
namespace {

using ::testing::ElementsAre;
using ::testing::StartsWith;

class InstallWithBackupTest : public CoreTest {
protected:
    InstallWithBackupTest() {
        for (const char* folder : {"C:/Game", "C:/New", "C:/Backup"})
            machine.files.putFolder(folder);
    }

    void put(const std::string& folder, const std::vector<std::string>& paths) {
        for (const std::string& path : paths)
            machine.files.putFile("C:/" + folder + "/" + path, contentOf(folder + " " + path));
    }

    bool install(const std::vector<std::string>& old, const std::vector<std::string>& offered) {
        put("Game", old);
        put("New", offered);
        return installWithBackup("C:/Game", "C:/New", "C:/Backup", old, offered, error);
    }
};

TEST_F(InstallWithBackupTest, NeighboursMakeTheirFolderOnce) {
    ASSERT_TRUE(install({"data/a", "data/b", "data/c", "first", "second"}, {"data/x", "data/y", "third", "fourth"}));
    EXPECT_THAT(callsOf(Operation::createFolder),
                ElementsAre("C:/Backup/data", "C:/Backup", "C:/Game/data", "C:/Game"));
}

TEST_F(InstallWithBackupTest, FoldersWhoseNamesDifferInOneLetterAreAllMade) {
    const std::vector<std::string> paths = {"d1/a", "d2/a", "e2/a", "e2/b/a", "e2/b/cc", "e2/c/cc"};
    ASSERT_TRUE(install(paths, paths));
    for (const std::string& path : paths) {
        EXPECT_EQ(contentOfFile("C:/Game/" + path), "New " + path);
        EXPECT_EQ(contentOfFile("C:/Backup/" + path), "Game " + path);
    }
}

TEST_F(InstallWithBackupTest, AFolderThatVanishedMeanwhileIsMadeAgainForItsOldFile) {
    put("Game", {"data/a"});
    put("New", {"b"});
    Intrusion removal;
    removal.kind = Intrusion::Kind::remove;
    removal.path = "C:/Game/data";
    plan({{{Operation::createFolder, "C:/Game", 0}, removal}, {{Operation::moveFile, "C:/New/b", 0}, Fault{5}}});
    EXPECT_FALSE(installWithBackup("C:/Game", "C:/New", "C:/Backup", {"data/a"}, {"b"}, error));
    EXPECT_EQ(contentOfFile("C:/Game/data/a"), "Game data/a");
}

TEST_F(InstallWithBackupTest, AMoveInThatFailedAndTookEffectAllTheSameIsTakenBack) {
    harm(Operation::moveFile, {.error = 64, .effect = Extent::whole});
    EXPECT_FALSE(install({}, {"b"}));
    EXPECT_EQ(contentOfFile("C:/Game/b"), "(none)");
}

TEST_F(InstallWithBackupTest, AFileOfSomebodyElseInThePlaceOfANewOneIsNotTakenOut) {
    put("New", {"b"});
    Intrusion creation;
    creation.kind = Intrusion::Kind::create;
    creation.path = "C:/Game/b";
    creation.second = "somebody else's";
    const Trigger moveIn{Operation::moveFile, "C:/New/b", 0};
    plan({{moveIn, creation}, {moveIn, Fault{5}}});
    EXPECT_FALSE(installWithBackup("C:/Game", "C:/New", "C:/Backup", {}, {"b"}, error));
    EXPECT_EQ(contentOfFile("C:/Game/b"), "somebody else's");
}

TEST_F(InstallWithBackupTest, AStatusThatCannotBeToldNamesTheQuery) {
    const std::pair<std::size_t, std::string> queries[] = {{0, "filesystem error: exists: "},
                                                           {1, "filesystem error: status: "}};
    for (const auto& [number, text] : queries) {
        harm(Operation::entryFacts, {.error = 5}, number);
        try {
            static_cast<void>(install({"a"}, {"a"}));
            FAIL() << "nothing thrown";
        } catch (const std::filesystem::filesystem_error& thrown) {
            EXPECT_THAT(thrown.what(), StartsWith(text));
            EXPECT_EQ(thrown.path1(), "C:/Game/a");
        }
    }
}

}  // namespace
}  // namespace vorthmere::update::simulation
