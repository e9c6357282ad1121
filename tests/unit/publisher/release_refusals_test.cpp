#include <gmock/gmock.h>
#ifndef _WIN32
#include <sys/stat.h>
#endif

#include <functional>

#include "publisher/durable_files.h"
#include "publisher/package_reader.h"
#include "publisher/package_writer.h"
#include "publisher/release_texts.h"
#include "tests/unit/publisher/publishing.h"
#include "update/limits.h"
#include "update/managed_file_list.h"
#include "update/metadata_text.h"
#include "update/release_channel.h"

namespace vorthmere::publish::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;
using update::testing::writeFile;

class ReleaseRefusalsTest : public PublishingTest {
protected:
    /// Expects a refusal that leaves the channel and the game folder as remember() saw them.
    void expectRefusal(const ReleaseRequest& wanted, const ::testing::Matcher<std::string>& sentence) {
        EXPECT_THAT(refusalOf(wanted), AllOf(sentence, ::testing::EndsWith(".")));
        EXPECT_EQ(readTree(wanted.channel), channelBefore_);
        EXPECT_EQ(readTree(game), gameBefore_);
        EXPECT_EQ(fs::exists(wanted.channel), channelExisted_);
    }

    void remember() {
        channelBefore_ = readTree(channel);
        channelExisted_ = fs::exists(channel);
        gameBefore_ = readTree(game);
    }

private:
    Tree channelBefore_;
    Tree gameBefore_;
    bool channelExisted_ = false;
};

struct Fault {
    std::string name;
    std::function<void(const fs::path& game)> cause;
    std::string sentence;  ///< a part of it
};

std::ostream& operator<<(std::ostream& output, const Fault& fault) {
    return output << fault.name;
}

class UnfitGameFolder : public ReleaseRefusalsTest, public ::testing::WithParamInterface<Fault> {};

TEST_P(UnfitGameFolder, IsRefusedBeforeAnythingIsWritten) {
    publish(41);
    GetParam().cause(game);
    remember();
    expectRefusal(request(42), HasSubstr(GetParam().sentence));
}

TEST_P(UnfitGameFolder, IsRefusedBeforeANewChannelIsCreated) {
    GetParam().cause(game);
    remember();
    expectRefusal(request(42), HasSubstr(GetParam().sentence));
}

std::function<void(const fs::path&)> with(const std::string& path) {
    return [path](const fs::path& game) { writeFile(game / std::u8string(path.begin(), path.end()), "x"); };
}

#ifndef _WIN32
const Fault kFaultsThatWindowsCannotHave[] = {
    {"LinkToAFile", [](const fs::path& game) { fs::create_symlink("Vorthmere.exe", game / "data/link"); },
     "\"data/link\" is a symbolic link"},
    {"LinkToNothing", [](const fs::path& game) { fs::create_symlink("gone", game / "dangling"); },
     "\"dangling\" is a symbolic link"},
    {"ListThatIsALink", [](const fs::path& game) { fs::create_symlink("x", game / "KVN_MANAGED_FILES.txt"); },
     "\"KVN_MANAGED_FILES.txt\" is a symbolic link"},
    {"Pipe", [](const fs::path& game) { mkfifo((game / "pipe").c_str(), 0600); }, "\"pipe\" is a special file"},
    {"Backslash", with("data\\a.pak"), "\"data\\a.pak\" cannot be in a release: only ASCII letters"},
    {"NameThatEndsInAStop", with("data/readme."), "may end in a full stop or a space"},
    {"NameThatEndsInASpace", with("data/readme "), "may end in a full stop or a space"},
    {"DeviceName", with("data/nul.txt"), "\"nul.txt\" names a Windows device"},
    {"SameFileInAnotherCase", with("data/LEVEL one.pak"),
     "\"data/level one.pak\" and \"data/LEVEL one.pak\" are one and the same file on Windows"},
    {"SameFolderInAnotherCase", with("Data/other.pak"), "\"data\" and \"Data\" are one and the same on Windows"},
    {"FileLikeAFolder", with("DATA"), "\"DATA\" is a file and \"data\" a folder"},
};

INSTANTIATE_TEST_SUITE_P(EveryThatWindowsCannotHave, UnfitGameFolder, ::testing::ValuesIn(kFaultsThatWindowsCannotHave),
                         [](const ::testing::TestParamInfo<Fault>& fault) { return fault.param.name; });
#endif

const Fault kFaults[] = {
    {"NameBeyondAscii", with("data/été.pak"), "\"data/été.pak\" cannot be in a release: only ASCII letters"},
    {"ForbiddenCharacter", with("data/a+b.pak"), "only ASCII letters, digits, spaces and the characters"},
    {"ForbiddenCharacterInAFolder", with("da~ta/a.pak"), "\"da~ta\" cannot be in a release"},
    {"WorkFolder", with(".KVN-Update/x"), "is the updater's own work folder"},
    {"PathTooLong", with("a/" + std::string(239, 'b')), "a path may have 240 bytes, this one has 241"},
    {"ListInAnotherCase", with("kvn_managed_files.txt"),
     "\"kvn_managed_files.txt\" and \"KVN_MANAGED_FILES.txt\" are one and the same file"},
    {"MarkerThatIsAFolder", with("kvn_release.txt/x"), "\"kvn_release.txt\" is a file and"},
    {"NoGame", [](const fs::path& game) { fs::remove(game / "Vorthmere.exe"); }, "\"Vorthmere.exe\" is missing"},
    {"NoUpdater", [](const fs::path& game) { fs::remove(game / "KVNUpdater.exe"); }, "\"KVNUpdater.exe\" is missing"},
    {"UpdaterInAnotherCase",
     [](const fs::path& game) {
         fs::remove(game / "KVNUpdater.exe");
         writeFile(game / "kvnupdater.exe", "x");
     },
     "\"KVNUpdater.exe\" is missing at the top of the game folder, spelled exactly so"},
    {"TooManyFiles",
     [](const fs::path& game) {
         for (int i = 0; i < 1017; ++i)
             writeFile(game / std::to_string(i), "");
     },
     "would hold 1025 files, the two generated ones included; at most 1024"},
    {"TooManyBytes", [](const fs::path& game) { fs::resize_file(game / "Vorthmere.exe", 2147483648); },
     "at most 2147483648 (2 GiB) are allowed"},
    {"ListTooLong",
     [](const fs::path& game) {
         const std::string deep = std::string(80, 'a') + "/" + std::string(80, 'b') + "/";
         for (int i = 0; i < 820; ++i)
             writeFile(game / (deep + std::to_string(i)), "");
     },
     "\"KVN_MANAGED_FILES.txt\" would have"},
};

INSTANTIATE_TEST_SUITE_P(Every, UnfitGameFolder, ::testing::ValuesIn(kFaults),
                         [](const ::testing::TestParamInfo<Fault>& fault) { return fault.param.name; });

TEST_F(ReleaseRefusalsTest, MostFilesThatAreAllowedArePublished) {
    for (int i = 0; i < 1016; ++i)
        putFile(std::to_string(i), "x");
    EXPECT_EQ(publish(42).files, update::kMaxManagedFiles);
}

TEST_F(ReleaseRefusalsTest, FilesThatDoNotBelongInAGame) {
    for (const std::string path : {".git/config", "data/.svn/entries", "data/.DS_Store", "Thumbs.db", "bin/Game.PDB",
                                   "signing/kelvane.pfx", "id_ed25519", "__MACOSX/x"}) {
        putFile(path, "x");
        EXPECT_THAT(refusalOf(42), HasSubstr("does not belong in a game: leave it out with --exclude")) << path;
        ReleaseRequest wanted = request(42);
        wanted.patterns.include = {"/" + path.substr(0, path.find('/')), path.substr(path.rfind('/') + 1), ".svn"};
        wanted.isDryRun = true;
        EXPECT_EQ(refusalOf(wanted), "") << path;
        fs::remove_all(game / path.substr(0, path.find('/')));
        putFile("data/level one.pak", "level one");
    }
}

TEST_F(ReleaseRefusalsTest, ProgramsThatNoPlayerCouldRun) {
    ReleaseRequest wanted = request(42);
    wanted.allowAnyPrograms = false;
    EXPECT_THAT(refusalOf(wanted), StartsWith("\"Vorthmere.exe\" is not a 64-bit Windows program"));
    putFile("Vorthmere.exe", windowsProgram("the game"));
    EXPECT_THAT(refusalOf(wanted), StartsWith("\"KVNUpdater.exe\" is not a 64-bit Windows program"));
    putFile("KVNUpdater.exe", windowsProgram("https://games.example/downloads/"));
    EXPECT_THAT(refusalOf(wanted), StartsWith("\"KVNUpdater.exe\" does not hold the channel's address"));
    putFile("KVNUpdater.exe", windowsProgram(update::kDownloadBaseUrl));
    EXPECT_EQ(refusalOf(wanted), "");
}

TEST_F(ReleaseRefusalsTest, ProgramsOfOtherKinds) {
    ReleaseRequest wanted = request(42);
    wanted.allowAnyPrograms = false;
    constexpr std::size_t kMachineAt = 64 + 4;
    constexpr std::size_t kCharacteristicsAt = 64 + 22;
    constexpr std::size_t kFormatAt = 64 + 24;
    const std::string sound = windowsProgram("the game");
    for (const auto& [place, bytes] :
         {std::pair{kMachineAt, std::string("\x4c\x01")}, std::pair{kFormatAt, std::string("\x0b\x01")},
          std::pair{kCharacteristicsAt, std::string("\x22\x20")}}) {
        std::string other = sound;
        other.replace(place, 2, bytes);
        putFile("Vorthmere.exe", other);
        EXPECT_THAT(refusalOf(wanted), StartsWith("\"Vorthmere.exe\" is not a 64-bit Windows program")) << place;
    }
    putFile("Vorthmere.exe", sound.substr(0, 70));
    EXPECT_THAT(refusalOf(wanted), StartsWith("\"Vorthmere.exe\" is not a 64-bit Windows program"));
}

TEST_F(ReleaseRefusalsTest, GameFolderThatIsNotThere) {
    ReleaseRequest wanted = request(42);
    wanted.gameFolder = folder / "nowhere";
    remember();
    expectRefusal(wanted, HasSubstr("nowhere\" is not a folder"));
}

TEST_F(ReleaseRefusalsTest, ChannelThatIsAFile) {
    ReleaseRequest wanted = request(42);
    wanted.channel = folder / "file";
    writeFile(wanted.channel, "x");
    EXPECT_THAT(refusalOf(wanted), HasSubstr("file\" is not a folder"));
}

TEST_F(ReleaseRefusalsTest, ChannelWithoutAName) {
    ReleaseRequest wanted = request(42);
    wanted.channel.clear();
    EXPECT_THAT(refusalOf(wanted), StartsWith("Where the channel \"\" lies cannot be found out: "));
}

TEST_F(ReleaseRefusalsTest, ChannelAndGameFolderInsideEachOther) {
    ReleaseRequest wanted = request(42);
    wanted.channel = game / "channel";
    remember();
    EXPECT_THAT(refusalOf(wanted), HasSubstr("must lie apart"));
    wanted.channel = folder.path();
    EXPECT_THAT(refusalOf(wanted), HasSubstr("must lie apart"));
    wanted.channel = game;
    EXPECT_THAT(refusalOf(wanted), HasSubstr("must lie apart"));
}

TEST_F(ReleaseRefusalsTest, ReleaseBelowThePublishedOne) {
    publish(42);
    remember();
    expectRefusal(request(41), StartsWith("Release 42 is published, and updaters never go back"));
}

TEST_F(ReleaseRefusalsTest, SameReleaseWithOtherContent) {
    publish(42);
    putFile("data/level one.pak", "other");
    remember();
    expectRefusal(request(42), StartsWith("Release 42 is published already with other content"));
    fs::remove(channel / "KVN-release-42.zip.files");
    remember();
    expectRefusal(request(42), StartsWith("Release 42 is published already with another package"));
}

TEST_F(ReleaseRefusalsTest, SameReleaseWhosePackageIsPackedDifferently) {
    publish(42);
    std::vector<ReleaseFile> files;
    for (const update::InventoryEntry& entry : inventory())
        files.push_back({entry, channel / objectName(entry.sha256), {}, false});
    update::Manifest offered = manifest();
    PackageFacts facts;
    PathSet taken;
    std::string error;
    ASSERT_TRUE(writePackage(
        files, {channel / "KVN-release-42.zip", update::kMaxPackageBytes}, false, taken, [](std::uint64_t) {}, error))
        << error;
    ASSERT_TRUE(verifyPackage(
        channel / "KVN-release-42.zip", inventoryOf(files), {}, facts, [](std::uint64_t) {}, error))
        << error;
    offered.size = facts.size;
    offered.sha256 = facts.sha256;
    writeFile(channel / "KVN-release-42.zip.files", inventoryText(offered, inventoryOf(files)));
    writeFile(channel / "KVN-alpha.manifest", manifestText(offered));
    // The build reuses entries that are packed already.
    EXPECT_EQ(refusalOf(42), "");
    fs::remove(channel / "KVN-release-42.zip");
    remember();
    expectRefusal(request(42), AllOf(StartsWith("Release 42 is published already with the same content and details, "
                                                "but its package comes out differently"),
                                     HasSubstr("another version of zlib")));
    fs::remove(channel / "KVN-release-42.zip.files");
    remember();
    expectRefusal(request(42), AllOf(StartsWith("Release 42 is published already with another package"),
                                     HasSubstr("another version of zlib")));
}

TEST_F(ReleaseRefusalsTest, SameReleaseWithOtherDetails) {
    publish(42);
    remember();
    for (const auto& change : std::vector<std::function<void(update::Manifest&)>>{
             [](update::Manifest& m) { m.version = "0.9.4"; }, [](update::Manifest& m) { m.protocol = 8; },
             [](update::Manifest& m) { m.mandatory = true; }, [](update::Manifest& m) { m.notes = "Other."; }}) {
        ReleaseRequest wanted = request(42);
        change(wanted.details);
        expectRefusal(wanted, StartsWith("Release 42 is published already with other content or other details"));
    }
}

TEST_F(ReleaseRefusalsTest, ChannelWhoseManifestCannotBeRead) {
    writeFile(channel / "KVN-alpha.manifest", "KVN-UPDATE/1\nrelease=41\n");
    remember();
    expectRefusal(request(42), AllOf(HasSubstr("\"KVN-alpha.manifest\" would be refused by the updater: Manifest is "
                                               "missing a required field."),
                                     HasSubstr("Restore or remove it first")));
}

TEST_F(ReleaseRefusalsTest, FoldersWhereFilesHaveToStand) {
    for (const fs::path& place : {channel / "KVN-release-42.zip", channel / "KVN-release-42.zip.files",
                                  channel / "KVN-alpha.manifest", objectOf("data/level one.pak")}) {
        fs::create_directories(place / "inside");
        remember();
        expectRefusal(request(42), ::testing::_);
        fs::remove_all(channel);
    }
}

TEST_F(ReleaseRefusalsTest, SecondPublisherInTheSameChannel) {
    publish(41);
    const Tree before = readTree(channel);
    Descriptor lock;
    std::string error;
    ASSERT_TRUE(lockFolder(channel, lock, error)) << error;
    EXPECT_THAT(refusalOf(42), StartsWith("Another kvn-release is writing to"));
    lock = Descriptor();
    EXPECT_EQ(readTree(channel), before);
    publish(42);
}

}  // namespace
}  // namespace vorthmere::publish::testing
