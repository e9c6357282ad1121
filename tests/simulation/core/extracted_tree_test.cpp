#include "install/extracted_tree.h"

#include "tests/simulation/core/bench.h"

namespace vorthmere::update::simulation {
namespace {

using ::testing::ElementsAre;

class ExtractedTreeTest : public CoreTest {
protected:
    bool inspect() {
        error.clear();
        return inspectExtractedTree("C:/Test", files, error);
    }

    ExtractedFiles files{"earlier"};
};

TEST_F(ExtractedTreeTest, NamesTheFilesOfAnyFolderAndNothingFromBefore) {
    machine.files.putFile("C:/Test/Folder/a", contentOf("a"));
    machine.files.putFile("C:/Test/b", contentOf("b"));
    machine.files.putFolder("C:/Test/empty");
    EXPECT_TRUE(inspect());
    EXPECT_THAT(files, ElementsAre("Folder/a", "b"));
    EXPECT_EQ(error, L"");
}

TEST_F(ExtractedTreeTest, RefusesAnUnsafeName) {
    machine.files.putFile("C:/Test/a+b", contentOf("a"));
    EXPECT_FALSE(inspect());
    EXPECT_EQ(error, L"The extracted update contains an unsafe path.");
}

TEST_F(ExtractedTreeTest, WhatCannotBeAskedForEndsIt) {
    machine.files.putFile("C:/Test/Folder/a", contentOf("a"));
    const std::pair<Operation, std::wstring> steps[] = {
        {Operation::listFolder, L"Unable to inspect the extracted update."},
        {Operation::entryFacts, L"Unable to inspect the extracted update."},
        {Operation::openForItsName, L"The extracted update contains an unsafe path."},
        {Operation::finalPath, L"The extracted update contains an unsafe path."},
    };
    for (const auto& [operation, sentence] : steps)
        for (const std::size_t number : {0U, 1U}) {
            harm(operation, {.error = 5}, number);
            EXPECT_FALSE(inspect());
            EXPECT_EQ(error, sentence);
        }
    harm(Operation::entryFacts, {.error = 2}, 1);
    EXPECT_FALSE(inspect());
    EXPECT_EQ(error, L"Unable to inspect the extracted update.");
}

TEST_F(ExtractedTreeTest, TheFirstEntryThatIsRefusedIsTheOneThatIsTold) {
    const std::string unsupported = "C:/Test/c";
    machine.files.putFile("C:/Test/b+b", contentOf("b"));
    machine.files.putReparsePoint(unsupported, tag::junction, "C:/Windows", true);
    const Fault unknown{.error = 5, .always = true};
    plan({{{Operation::entryAttributes, unsupported}, unknown}});
    EXPECT_FALSE(inspect());
    EXPECT_EQ(error, L"The extracted update contains an unsafe path.");

    machine.files.putReparsePoint("C:/Test/a", tag::junction, "C:/Windows", true);
    plan({{{Operation::entryAttributes, "C:/Test/a"}, unknown}});
    EXPECT_FALSE(inspect());
    EXPECT_EQ(error, L"The update archive contains an unsupported file type.");
}

TEST_F(ExtractedTreeTest, ALinkEndsTheWalkWithoutAFailure) {
    machine.files.putFile("C:/Test/a", contentOf("a"));
    machine.files.putReparsePoint("C:/Test/b", tag::junction, "C:/Windows", true);
    machine.files.putFile("C:/Test/c", contentOf("c"));
    EXPECT_TRUE(inspect());
    EXPECT_THAT(files, ElementsAre("a"));
}

}  // namespace
}  // namespace vorthmere::update::simulation
