#include "updater/worker.h"

#include <gmock/gmock.h>

#include <thread>
#include <vector>

#include "tests/support/folder_link.h"
#include "tests/support/heap_use.h"
#include "tests/support/sample_metadata.h"
#include "tests/support/temporary_folder.h"
#include "update/exit_code.h"
#include "update/manifest.h"
#include "updater/download_progress.h"
#include "updater/posted_record.h"

namespace vorthmere::update {
namespace {

using ::testing::ElementsAre;
using ::testing::FieldsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

/// Runs the worker on its own thread and collects what it posts.
class WorkerTest : public ::testing::Test {
protected:
    void SetUp() override {
        window = CreateWindowExW(0, L"STATIC", nullptr, 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr);
        ASSERT_TRUE(window);
        arguments.install = installation.path();
        arguments.currentRelease = 42;
        arguments.noRelaunch = true;
    }
    void TearDown() override {
        DestroyWindow(window);
    }

    void makeCurrentInstallation() {
        for (const char* name : {"Vorthmere.exe", "KVNUpdater.exe", "KVN_MANAGED_FILES.txt"})
            testing::writeFile(installation / name, "x");
        arguments.manifestFile = installation / "offered.manifest";
        arguments.packageFile = installation / "offered.zip";
        testing::writeFile(arguments.manifestFile,
                           testing::joinLines(testing::manifestLines(testing::sampleManifest())));
    }

    void work() {
        std::thread worker(runWorker, arguments, window);
        worker.join();
        MSG message{};
        while (PeekMessageW(&message, window, 0, 0, PM_REMOVE))
            take(message);
    }

    void take(const MSG& message) {
        if (message.message == ProgressRecord::kMessage) {
            EXPECT_THAT(outcomes, IsEmpty()) << "progress behind the outcome";
            progress.push_back(std::move(*receiveRecord<ProgressRecord>(message.lParam)));
        } else if (message.message == OutcomeRecord::kMessage) {
            outcomes.push_back(std::move(*receiveRecord<OutcomeRecord>(message.lParam)));
        } else {
            ADD_FAILURE() << "unexpected message " << message.message;
        }
    }

    testing::TemporaryFolder installation;
    Arguments arguments;
    HWND window = nullptr;
    std::vector<ProgressRecord> progress;
    std::vector<OutcomeRecord> outcomes;
};

TEST_F(WorkerTest, RunThatIsRefusedAtOncePostsNothingButItsOutcome) {
    work();
    EXPECT_THAT(progress, IsEmpty());
    EXPECT_THAT(outcomes, ElementsAre(FieldsAre(10, L"This is not a writable Kelvane portable installation.")));
}

TEST_F(WorkerTest, EveryStepIsPostedInOrderAndTheOutcomeLast) {
    makeCurrentInstallation();
    work();
    EXPECT_THAT(progress, ElementsAre(FieldsAre(L"Checking the alpha channel...", 5u),
                                      FieldsAre(L"This installation is already current.", 100u)));
    EXPECT_THAT(outcomes, ElementsAre(FieldsAre(0, L"")));
}

TEST_F(WorkerTest, RunWithoutAWindowEndsAndLeavesNothingOnTheHeap) {
    makeCurrentInstallation();
    DestroyWindow(window);
    work();
    const std::size_t before = testing::heapInUse();
    for (int i = 0; i < 20; ++i)
        runWorker(arguments, window);
    EXPECT_EQ(testing::heapInUse(), before);
    EXPECT_THAT(progress, IsEmpty());
    EXPECT_THAT(outcomes, IsEmpty());
}

TEST_F(WorkerTest, RecordsOfAWholeRunLeaveNothingOnTheHeap) {
    makeCurrentInstallation();
    const auto workAndForget = [this] {
        runWorker(arguments, window);
        MSG message{};
        while (PeekMessageW(&message, window, 0, 0, PM_REMOVE))
            take(message);
        progress = {};
        outcomes = {};
    };
    workAndForget();
    const std::size_t before = testing::heapInUse();
    for (int i = 0; i < 20; ++i)
        workAndForget();
    EXPECT_EQ(testing::heapInUse(), before);
}

// This program sets no handler for std::terminate, so the worker has to set one. Some C libraries keep one a thread.
TEST_F(WorkerTest, ExceptionThatLeavesTheRunEndsTheProcessWithTheCodeOfAFatalEnd) {
    makeCurrentInstallation();
    const std::filesystem::path program = installation / "KVNUpdater.exe";
    DeleteFileW(program.c_str());
    const testing::Link loop(program, program);
    EXPECT_EXIT(std::thread(runWorker, arguments, window).join(), ::testing::ExitedWithCode(kAbnormalExitCode), "");
}

// Windows hands out a download in pieces of some 8 KiB, and a queue takes 10,000 messages.
TEST_F(WorkerTest, WholeDownloadPostsFewRecordsToAWindowThatStandsStillAndItsOutcomeArrives) {
    constexpr std::uint64_t packageBytes = 512 * 1024 * 1024;
    constexpr std::uint64_t pieceBytes = 8 * 1024;
    Manifest manifest;
    manifest.size = packageBytes;
    const ProgressCallback post = progressPoster(window);
    const ByteProgressCallback received = downloadProgress(manifest, post);
    for (std::uint64_t bytes = pieceBytes; bytes <= packageBytes; bytes += pieceBytes)
        received(bytes, packageBytes);
    work();
    ASSERT_EQ(progress.size(), 101u);
    EXPECT_THAT(progress.front(), FieldsAre(L"Downloading update... 0%", 12u));
    EXPECT_THAT(progress.back(), FieldsAre(L"Downloading update... 100%", 65u));
    EXPECT_THAT(outcomes, SizeIs(1));
}

TEST_F(WorkerTest, OnlyWhatIsShownAlreadyIsNotPosted) {
    const ProgressCallback post = progressPoster(window);
    post(L"a step", 5);
    post(L"a step", 5);
    post(L"a step", 6);
    post(L"another step", 6);
    post(L"a step", 5);
    work();
    EXPECT_THAT(progress, ElementsAre(FieldsAre(L"a step", 5u), FieldsAre(L"a step", 6u),
                                      FieldsAre(L"another step", 6u), FieldsAre(L"a step", 5u)));
}

}  // namespace
}  // namespace vorthmere::update
