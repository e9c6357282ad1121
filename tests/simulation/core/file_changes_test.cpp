#include "files/file_changes.h"

#include "tests/simulation/core/bench.h"

namespace vorthmere::update::simulation {
namespace {

using ::testing::ElementsAre;

/// What tests/contract cannot show: calls that fail although nothing stands in their way, and calls that are not made.
class FileChangesTest : public CoreTest {
protected:
    FileChangesTest() {
        machine.files.putFile("C:/Test/tree/file", contentOf("file"));
    }

    [[nodiscard]] bool isThere(std::string_view path) const {
        return machine.files.find(path).has_value();
    }
};

TEST_F(FileChangesTest, ARefusalIsTriedAgainForAReadOnlyEntryAlone) {
    harm(Operation::deleteFile, {.error = 5});
    EXPECT_EQ(removeFile("C:/Test/tree/file").value(), 5);
    EXPECT_THAT(callsOf(Operation::deleteFile), ElementsAre("C:/Test/tree/file"));
    EXPECT_THAT(callsOf(Operation::setAttributes), ElementsAre());
}

TEST_F(FileChangesTest, ARefusalStaysOneWhereTheAttributesCannotBeReadOrSet) {
    machine.files.putFile("C:/Test/kept", contentOf("kept"), attribute::archive | attribute::readOnly);
    for (const Operation operation : {Operation::entryAttributes, Operation::setAttributes}) {
        harm(operation, {.error = 19});
        EXPECT_EQ(removeFile("C:/Test/kept").value(), 5);
        EXPECT_TRUE(isThere("C:/Test/kept"));
    }
}

TEST_F(FileChangesTest, AnEntryThatIsThereAndSaidNotToBeIsNotRemoved) {
    for (const std::uint32_t told : {2U, 3U, 5U}) {
        harm(Operation::removeEmptyFolder, {.error = told});
        EXPECT_EQ(removeTree("C:/Test/tree").value(), told == 2U ? 0 : static_cast<int>(told)) << told;
        EXPECT_TRUE(isThere("C:/Test/tree")) << told;
        machine.files.putFile("C:/Test/tree/file", contentOf("file"));
    }
}

TEST_F(FileChangesTest, AFolderThatIsSaidToBeGoneWhenItIsListedIsRemovedAllTheSame) {
    harm(Operation::listFolder, {.error = 2});
    EXPECT_EQ(removeTree("C:/Test/tree").value(), 145);
}

TEST_F(FileChangesTest, AnEntryThatVanishesIsRemoved) {
    for (const std::uint32_t told : {2U, 3U, 64U}) {
        machine.files.putFile("C:/Test/tree/file", contentOf("file"));
        harm(Operation::deleteFile, {.error = told, .effect = Extent::whole});
        EXPECT_EQ(removeTree("C:/Test/tree").value(), told == 64U ? 64 : 0);
    }
}

TEST_F(FileChangesTest, AFolderThatVanishesWithAllThatItHoldsIsRemoved) {
    machine.files.putFolder("C:/Test/tree/inner");
    Intrusion away;
    away.kind = Intrusion::Kind::rename;
    away.path = "C:/Test/tree";
    away.second = "C:/Test/elsewhere";
    plan({{{Operation::listFolder, "C:/Test/tree/inner"}, away}});
    EXPECT_FALSE(removeTree("C:/Test/tree"));
    plan({{{Operation::deleteFile}, away}});
    machine.files.putFile("C:/Test/tree/file", contentOf("file"));
    away.second = "C:/Test/elsewhere too";
    plan({{{Operation::deleteFile}, away}});
    EXPECT_FALSE(removeTree("C:/Test/tree"));
}

TEST_F(FileChangesTest, WhereAPathLeadsIsUnknownNothingIsTakenForRemoved) {
    // The path is not found, and neither is the reason.
    plan({{{Operation::deleteFile}, Fault{.error = 3}},
          {{Operation::entryAttributes, "C:/Test/tree/file"}, Fault{.error = 3}},
          {{Operation::entryAttributes, "C:/Test/tree", 1}, Fault{.error = 5}}});
    EXPECT_EQ(removeTree("C:/Test/tree").value(), 3);
    plan({{{Operation::deleteFile}, Fault{.error = 3}},
          {{Operation::entryAttributes, "C:/Test/tree/file"}, Fault{.error = 3}}});
    EXPECT_EQ(removeTree("C:/Test/tree").value(), 3);
    EXPECT_TRUE(isThere("C:/Test/tree/file"));
}

TEST_F(FileChangesTest, TheFirstEntryThatStaysEndsTheRemoval) {
    machine.files.putFile("C:/Test/tree/a", contentOf("a"));
    harm(Operation::deleteFile, {.error = 32});
    EXPECT_EQ(removeTree("C:/Test/tree").value(), 32);
    EXPECT_THAT(callsOf(Operation::deleteFile), ElementsAre("C:/Test/tree/a"));
    EXPECT_THAT(callsOf(Operation::removeEmptyFolder), ElementsAre());
    harm(Operation::listFolder, {.error = 5});
    EXPECT_EQ(removeTree("C:/Test/tree").value(), 5);
    harm(Operation::entryAttributes, {.error = 21});
    EXPECT_EQ(removeTree("C:/Test/tree").value(), 21);
}

TEST_F(FileChangesTest, AFolderIsMadeOnlyWhereItsParentIsMissing) {
    std::vector<std::filesystem::path> created;
    harm(Operation::createFolder, {.error = 5});
    EXPECT_EQ(createFolders("C:/Test/new/inner", created).value(), 5);
    EXPECT_THAT(callsOf(Operation::createFolder), ElementsAre("C:/Test/new/inner"));
    harm(Operation::createFolder, {.error = 5}, 1);
    EXPECT_EQ(createFolders("C:/Test/new/inner", created).value(), 5);
    EXPECT_THAT(callsOf(Operation::createFolder), ElementsAre("C:/Test/new/inner", "C:/Test/new"));
    EXPECT_THAT(created, ElementsAre());
}

}  // namespace
}  // namespace vorthmere::update::simulation
