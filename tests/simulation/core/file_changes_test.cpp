#include "files/file_changes.h"

#include "tests/simulation/core/bench.h"

namespace vorthmere::update::simulation {
namespace {

using ::testing::ElementsAre;

/// What tests/contract cannot show: calls that fail although nothing stands in their way, and calls that are not made.
class FileChangesTest : public CoreTest {
protected:
    FileChangesTest() {
        machine.files.putFile("C:/Work/tree/file", contentOf("file"));
    }

    [[nodiscard]] bool isThere(std::string_view path) const {
        return machine.files.find(path).has_value();
    }
};

TEST_F(FileChangesTest, ARefusalIsTriedAgainForAReadOnlyEntryAlone) {
    harm(Operation::deleteFile, {.error = 5});
    EXPECT_EQ(removeFile("C:/Work/tree/file").value(), 5);
    EXPECT_THAT(callsOf(Operation::deleteFile), ElementsAre("C:/Work/tree/file"));
    EXPECT_THAT(callsOf(Operation::setAttributes), ElementsAre());
}

TEST_F(FileChangesTest, ARefusalStaysOneWhereTheAttributesCannotBeReadOrSet) {
    machine.files.putFile("C:/Work/kept", contentOf("kept"), attribute::archive | attribute::readOnly);
    for (const Operation operation : {Operation::entryAttributes, Operation::setAttributes}) {
        harm(operation, {.error = 19});
        EXPECT_EQ(removeFile("C:/Work/kept").value(), 5);
        EXPECT_TRUE(isThere("C:/Work/kept"));
    }
}

TEST_F(FileChangesTest, AnEntryThatIsThereAndSaidNotToBeIsNotRemoved) {
    for (const std::uint32_t told : {2U, 3U, 5U}) {
        harm(Operation::removeEmptyFolder, {.error = told});
        EXPECT_EQ(removeTree("C:/Work/tree").value(), told == 2U ? 0 : static_cast<int>(told)) << told;
        EXPECT_TRUE(isThere("C:/Work/tree")) << told;
        machine.files.putFile("C:/Work/tree/file", contentOf("file"));
    }
}

TEST_F(FileChangesTest, AFolderThatIsSaidToBeGoneWhenItIsListedIsRemovedAllTheSame) {
    harm(Operation::listFolder, {.error = 2});
    EXPECT_EQ(removeTree("C:/Work/tree").value(), 145);
}

TEST_F(FileChangesTest, AnEntryThatVanishesIsRemoved) {
    for (const std::uint32_t told : {2U, 3U, 64U}) {
        machine.files.putFile("C:/Work/tree/file", contentOf("file"));
        harm(Operation::deleteFile, {.error = told, .effect = Extent::whole});
        EXPECT_EQ(removeTree("C:/Work/tree").value(), told == 64U ? 64 : 0);
    }
}

TEST_F(FileChangesTest, AFolderThatVanishesWithAllThatItHoldsIsRemoved) {
    machine.files.putFolder("C:/Work/tree/inner");
    Intrusion away;
    away.kind = Intrusion::Kind::rename;
    away.path = "C:/Work/tree";
    away.second = "C:/Work/elsewhere";
    plan({{{Operation::listFolder, "C:/Work/tree/inner"}, away}});
    EXPECT_FALSE(removeTree("C:/Work/tree"));
    plan({{{Operation::deleteFile}, away}});
    machine.files.putFile("C:/Work/tree/file", contentOf("file"));
    away.second = "C:/Work/elsewhere too";
    plan({{{Operation::deleteFile}, away}});
    EXPECT_FALSE(removeTree("C:/Work/tree"));
}

TEST_F(FileChangesTest, WhereAPathLeadsIsUnknownNothingIsTakenForRemoved) {
    // The path is not found, and neither is the reason.
    plan({{{Operation::deleteFile}, Fault{.error = 3}},
          {{Operation::entryAttributes, "C:/Work/tree/file"}, Fault{.error = 3}},
          {{Operation::entryAttributes, "C:/Work/tree", 1}, Fault{.error = 5}}});
    EXPECT_EQ(removeTree("C:/Work/tree").value(), 3);
    plan({{{Operation::deleteFile}, Fault{.error = 3}},
          {{Operation::entryAttributes, "C:/Work/tree/file"}, Fault{.error = 3}}});
    EXPECT_EQ(removeTree("C:/Work/tree").value(), 3);
    EXPECT_TRUE(isThere("C:/Work/tree/file"));
}

TEST_F(FileChangesTest, TheFirstEntryThatStaysEndsTheRemoval) {
    machine.files.putFile("C:/Work/tree/a", contentOf("a"));
    harm(Operation::deleteFile, {.error = 32});
    EXPECT_EQ(removeTree("C:/Work/tree").value(), 32);
    EXPECT_THAT(callsOf(Operation::deleteFile), ElementsAre("C:/Work/tree/a"));
    EXPECT_THAT(callsOf(Operation::removeEmptyFolder), ElementsAre());
    harm(Operation::listFolder, {.error = 5});
    EXPECT_EQ(removeTree("C:/Work/tree").value(), 5);
    harm(Operation::entryAttributes, {.error = 21});
    EXPECT_EQ(removeTree("C:/Work/tree").value(), 21);
}

TEST_F(FileChangesTest, AFolderIsMadeOnlyWhereItsParentIsMissing) {
    std::vector<std::filesystem::path> created;
    harm(Operation::createFolder, {.error = 5});
    EXPECT_EQ(createFolders("C:/Work/new/inner", created).value(), 5);
    EXPECT_THAT(callsOf(Operation::createFolder), ElementsAre("C:/Work/new/inner"));
    harm(Operation::createFolder, {.error = 5}, 1);
    EXPECT_EQ(createFolders("C:/Work/new/inner", created).value(), 5);
    EXPECT_THAT(callsOf(Operation::createFolder), ElementsAre("C:/Work/new/inner", "C:/Work/new"));
    EXPECT_THAT(created, ElementsAre());
}

}  // namespace
}  // namespace vorthmere::update::simulation
