#include "install/archive_tool.h"

#include "tests/simulation/core/bench.h"
#include "update/limits.h"

namespace vorthmere::update::simulation {
namespace {

using ::testing::ElementsAre;

constexpr std::string_view kListing = "a b\r\n";
constexpr std::string_view kTool = "C:/Windows/System32/tar.exe";

class ArchiveToolRunTest : public CoreTest {
protected:
    ArchiveToolRunTest() {
        machine.files.putFile("C:/Test/a.zip", contentOf(packageOf({{.name = "a b", .content = "text"}})));
    }

    bool run() {
        error.clear();
        output = "earlier";
        return runArchiveTool(std::filesystem::path(kTool), {L"-tf", L"C:/Test/a.zip"}, "C:/Test", output, error);
    }

    std::string output;
};

TEST_F(ArchiveToolRunTest, GivesWhatTheToolPrints) {
    EXPECT_TRUE(run());
    EXPECT_EQ(output, kListing);
    EXPECT_EQ(error, L"");
    EXPECT_THAT(callsOf(Operation::startCaptured),
                ElementsAre("\"C:/Windows/System32/tar.exe\" \"-tf\" \"C:/Test/a.zip\", C:/Test"));
    EXPECT_THAT(callsOf(Operation::waitForEnd), ElementsAre("C:/Windows/System32/tar.exe, 4294967295 ms"));
    EXPECT_THAT(machine.openHandles(), ElementsAre());
}

TEST_F(ArchiveToolRunTest, TheToolMayPrintAsMuchAsTheLimitAndNoMore) {
    machine.processes.archiveTool.alsoPrints = std::string(kMaxArchiveToolOutputBytes - kListing.size(), 'x');
    EXPECT_TRUE(run());
    EXPECT_EQ(output.size(), kMaxArchiveToolOutputBytes);
    machine.processes.archiveTool.alsoPrints += 'x';
    plan({});
    EXPECT_FALSE(run());
    EXPECT_EQ(error, L"The archive tool returned excessive output.");
    EXPECT_LE(output.size(), kMaxArchiveToolOutputBytes);
    EXPECT_THAT(callsOf(Operation::endProcess), ElementsAre("C:/Windows/System32/tar.exe, 9"));
}

TEST_F(ArchiveToolRunTest, EachStepThatFailsHasItsSentence) {
    harm(Operation::openPipe, {.error = 8});
    EXPECT_FALSE(run());
    EXPECT_EQ(error, L"Unable to capture the archive tool output.");
    EXPECT_EQ(output, "earlier");
    harm(Operation::startCaptured, {.error = 740});
    EXPECT_FALSE(run());
    EXPECT_EQ(error, L"Unable to start the Windows archive tool (error 740).");
    EXPECT_EQ(output, "earlier");
    for (const std::uint32_t code : {1U, 2U, 6U, 0xC0000005U}) {
        harm(Operation::exitCodeOf, {.error = code});
        EXPECT_FALSE(run());
        EXPECT_EQ(error, L"The Windows archive tool rejected the update package.");
        EXPECT_EQ(output, kListing);
    }
}

// It would go on writing, for ever where the pipe is full, if nobody told it that the reader is gone.
TEST_F(ArchiveToolRunTest, AToolWhoseOutputCannotBeReadToItsEndIsEnded) {
    std::vector<PackagedEntry> entries;
    for (int i = 0; i < 100; ++i)
        entries.push_back({.name = "file " + std::to_string(i)});
    machine.files.putFile("C:/Test/a.zip", contentOf(packageOf(entries)));
    harm(Operation::readBytes, {.error = 1117});
    EXPECT_FALSE(run());
    EXPECT_EQ(error, L"The Windows archive tool rejected the update package.");
}

}  // namespace
}  // namespace vorthmere::update::simulation
