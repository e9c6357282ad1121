// entryAttributes, entryFacts, targetFacts, listFolder, fullPath, openForItsName and finalPath.
#include <gmock/gmock.h>

#include "tests/contract/calls.h"

namespace vorthmere::update::contract {
namespace {

using ::testing::UnorderedElementsAre;

using CallOn = SceneCall (*)(std::string);

TEST_F(ContractTest, WhatIsMissingIsToldFromWhatLiesInAMissingFolder) {
    scene.make("a d/");
    for (const CallOn call : {askingAttributes, askingFacts, askingTarget, openingForName, reading}) {
        EXPECT_EQ(call("a")(scene).value(), 0);
        EXPECT_EQ(call("A")(scene).value(), 0);
        EXPECT_EQ(call("b")(scene).value(), 2);
        EXPECT_EQ(call("e/b")(scene).value(), 3);
        EXPECT_EQ(call("a/b")(scene).value(), 3);
        EXPECT_EQ(call("a*")(scene).value(), 123);
        EXPECT_EQ(call("a<b")(scene).value(), 123);
        EXPECT_EQ(call("d*/b")(scene).value(), 123);
    }
}

TEST_F(ContractTest, AnEmptyPathIsNowhere) {
    EXPECT_EQ(entryAttributes({}, failure).bits, 0u);
    EXPECT_EQ(failure.value(), 3);
    EXPECT_EQ(entryFacts({}, failure).size, 0u);
    EXPECT_EQ(failure.value(), 3);
    EXPECT_EQ(createFolder({}).value(), 3);
    EXPECT_EQ(deleteFile({}).value(), 3);
}

TEST_F(ContractTest, NothingIsFoundOnADriveThatIsNotThere) {
    EXPECT_EQ(listing("Q:/a")(scene).value(), 3);
    for (const CallOn call : {askingAttributes, askingFacts, askingTarget, openingForName, reading, creating})
        EXPECT_TRUE(follows(world, "a drive that is not there gives path not found", call("Q:/a")(scene), 3));
}

TEST_F(ContractTest, FactsAreThoseOfTheEntry) {
    scene.make("d/ !r ~h");
    scene.write("a", "12345");
    const EntryFacts file = entryFacts(scene.at("a"), failure);
    EXPECT_FALSE(failure);
    EXPECT_EQ(file.size, 5u);
    EXPECT_FALSE(file.attributes.isFolder() || file.attributes.isReadOnly() || file.attributes.isReparsePoint());
    const EntryFacts folder = entryFacts(scene.at("d"), failure);
    EXPECT_TRUE(folder.attributes.isFolder());
    EXPECT_EQ(folder.size, 0u);
    EXPECT_TRUE(entryFacts(scene.at("r"), failure).attributes.isReadOnly());
    EXPECT_EQ(entryAttributes(scene.at("h"), failure).bits & 0x2, 0x2u);
    const EntryFacts target = targetFacts(scene.at("a"), failure);
    EXPECT_FALSE(failure);
    EXPECT_EQ(target.size, 5u);
    EXPECT_EQ(target.attributes.bits, file.attributes.bits);
}

TEST_F(ContractTest, ALinkIsToldFromWhatItLeadsTo) {
    scene.make("d/ d/a l->d");
    EXPECT_TRUE(entryAttributes(scene.at("l"), failure).isReparsePoint());
    EXPECT_TRUE(entryAttributes(scene.at("l"), failure).isFolder());
    EXPECT_TRUE(entryFacts(scene.at("l"), failure).attributes.isReparsePoint());
    EXPECT_FALSE(targetFacts(scene.at("l"), failure).attributes.isReparsePoint());
    EXPECT_TRUE(targetFacts(scene.at("l"), failure).attributes.isFolder());
    EXPECT_FALSE(entryAttributes(scene.at("l/a"), failure).isReparsePoint());
    EXPECT_FALSE(failure);
}

TEST_F(ContractTest, ALinkToNothingIsThereButLeadsNowhere) {
    scene.make("d/ l->d/e");
    EXPECT_TRUE(follows(world, "a link to nothing is there", askingAttributes("l")(scene), 0));
    EXPECT_EQ(askingTarget("l")(scene).value(), 2);
    EXPECT_EQ(openingForName("l")(scene).value(), 2);
    EXPECT_EQ(reading("l")(scene).value(), 2);
}

TEST_F(ContractTest, ALinkToItselfCannotBeResolved) {
    scene.make("l->l");
    EXPECT_EQ(askingTarget("l")(scene).value(), 1921);
    EXPECT_EQ(openingForName("l")(scene).value(), 1921);
}

TEST_F(ContractTest, AHeldFileTellsItsFacts) {
    scene.make("a");
    ASSERT_EQ(world.hold(scene.at("a"), access::all, access::none), 0u);
    for (const CallOn call : {askingAttributes, askingFacts, askingTarget, openingForName})
        EXPECT_EQ(call("a")(scene).value(), 0);
}

TEST_F(ContractTest, AListingHasEveryEntryAsItIsWritten) {
    scene.make("Data/ Data/inner !ReadOnly b.txt l->Data");
    std::vector<std::string> names;
    for (const FolderEntry& entry : listFolder(scene.at(""), failure)) {
        names.push_back(entry.name.string());
        EXPECT_EQ(entry.attributes.isFolder(), names.back() == "Data" || names.back() == "l") << names.back();
        EXPECT_EQ(entry.attributes.isReadOnly(), names.back() == "ReadOnly");
        EXPECT_EQ(entry.attributes.isReparsePoint(), names.back() == "l");
    }
    EXPECT_FALSE(failure);
    EXPECT_THAT(names, UnorderedElementsAre("Data", "ReadOnly", "b.txt", "l"));
}

TEST_F(ContractTest, ALargeFolderIsListedWhole) {
    constexpr int kFiles = 300;
    for (int i = 0; i < kFiles; ++i)
        scene.write("file with a name of some length " + std::to_string(i), "");
    EXPECT_EQ(listFolder(scene.at(""), failure).size(), static_cast<std::size_t>(kFiles));
    EXPECT_FALSE(failure);
}

TEST_F(ContractTest, OnlyAFolderIsListed) {
    scene.make("a d/ l->d");
    EXPECT_TRUE(listFolder(scene.at("d"), failure).empty());
    EXPECT_FALSE(failure);
    EXPECT_EQ(listing("e")(scene).value(), 3);
    EXPECT_EQ(listing("e/f")(scene).value(), 3);
    EXPECT_TRUE(follows(world, "a file is no folder to list", listing("a")(scene), 267));
    EXPECT_EQ(listing("d*")(scene).value(), 123);
    EXPECT_EQ(listing("l")(scene).value(), 0);
    EXPECT_EQ(listing("Q:/d")(scene).value(), 3);
}

TEST_F(ContractTest, AFullPathFoldsDotsAndAsksNoDisk) {
    EXPECT_EQ(fullPath(scene.at("d/../e/./a"), failure), scene.at("e/a"));
    EXPECT_FALSE(failure);
    EXPECT_EQ(fullPath(scene.at("a..  "), failure), scene.at("a"));
    EXPECT_EQ(fullPath(scene.at("d./a"), failure), scene.at("d/a"));
    EXPECT_EQ(fullPath(scene.at("Q:/d/../../a"), failure), scene.at("Q:/a"));
    EXPECT_FALSE(failure);
}

TEST_F(ContractTest, AFullPathIsOfAnyLength) {
    for (const std::size_t length : {100U, 254U, 255U, 256U, 257U, 258U, 259U, 400U}) {
        const std::filesystem::path path = scene.at("C:/" + std::string(length, 'a'));
        EXPECT_EQ(fullPath(path, failure).native(), path.native());
        EXPECT_FALSE(failure);
    }
}

TEST_F(ContractTest, AFinalPathHasItsLinksResolvedAndNoPrefix) {
    scene.make("Data/ Data/file l->Data");
    const auto finalPathOf = [this](std::string_view path) {
        const FileHandle file = openForItsName(scene.at(path), failure);
        return file ? finalPath(file, failure) : std::filesystem::path();
    };
    EXPECT_EQ(finalPathOf("Data/file"), scene.at("Data/file"));
    EXPECT_EQ(finalPathOf("Data"), scene.at("Data"));
    EXPECT_EQ(finalPathOf("l"), scene.at("Data"));
    EXPECT_EQ(finalPathOf("l/file"), scene.at("Data/file"));
    EXPECT_FALSE(failure);
    EXPECT_EQ(finalPathOf("Data").native().find(std::filesystem::path("?").native()),
              std::filesystem::path::string_type::npos);
}

TEST_F(ContractTest, AFinalPathIsSpelledAsTheNamesAreKept) {
    scene.make("Data/");
    const FileHandle folder = openForItsName(scene.at("DATA"), failure);
    ASSERT_TRUE(folder);
    EXPECT_EQ(finalPath(folder, failure), scene.at("Data"));
}

}  // namespace
}  // namespace vorthmere::update::contract
