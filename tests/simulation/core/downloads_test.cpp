#include "transfer/downloads.h"

#include "platform/failure.h"
#include "tests/simulation/core/bench.h"
#include "update/limits.h"

namespace vorthmere::update::simulation {
namespace {

using ::testing::ElementsAre;
using ::testing::Pair;

constexpr const wchar_t* kAddress = L"https://host/a";
constexpr const wchar_t* kTooLarge = L"The update download is larger than the safety limit.";
constexpr const wchar_t* kNotStored = L"Unable to store the downloaded update.";
constexpr const wchar_t* kOtherSize = L"The HTTPS update download did not match its advertised size.";

class DownloadsTest : public CoreTest {
protected:
    bool download(std::uint64_t maxBytes) {
        error.clear();
        reported.clear();
        const auto progress = [this](std::uint64_t received, std::uint64_t whole) {
            reported.emplace_back(received, whole);
        };
        return downloadHttpsFile(kAddress, "C:/Test/a", maxBytes, progress, error);
    }

    Answer& given() {
        return machine.internet.answers["https://host/a"];
    }

    std::vector<std::pair<std::uint64_t, std::uint64_t>> reported;
};

TEST_F(DownloadsTest, ABodyMayBeAsLargeAsTheLimitAndNoLarger) {
    for (const bool tellsLength : {true, false}) {
        answer("https://host/a", std::string(20000, 'a'), tellsLength);
        EXPECT_TRUE(download(20000)) << tellsLength;
        EXPECT_EQ(contentOfFile("C:/Test/a"), std::string(20000, 'a'));
        EXPECT_FALSE(download(19999)) << tellsLength;
        EXPECT_EQ(error, tellsLength ? kTooLarge : kNotStored);
        EXPECT_LT(contentOfFile("C:/Test/a").size(), 20000U) << tellsLength;
    }
}

TEST_F(DownloadsTest, WhatTheHostDoesNotHaveIsNoDownload) {
    Manifest manifest;
    EXPECT_FALSE(download(100));
    EXPECT_EQ(error, L"The update host returned HTTP 404.");
    EXPECT_THAT(callsOf(Operation::createToWrite), ElementsAre());
    EXPECT_FALSE(fetchManifest(kAddress, manifest, error));
    EXPECT_EQ(error, L"The update host returned HTTP 404.");
}

TEST_F(DownloadsTest, OfABodyThatIsAnnouncedAsTooLargeNothingIsRead) {
    answer("https://host/a", "four");
    EXPECT_FALSE(download(3));
    EXPECT_THAT(callsOf(Operation::readData), ElementsAre());
}

TEST_F(DownloadsTest, TheProgressTellsTheBytesSoFarAndTheAnnouncedLength) {
    answer("https://host/a", std::string(20000, 'a'));
    EXPECT_TRUE(download(20000));
    EXPECT_THAT(reported, ElementsAre(Pair(8192, 20000), Pair(16384, 20000), Pair(20000, 20000)));
    answer("https://host/a", std::string(9000, 'a'), false);
    EXPECT_TRUE(download(20000));
    EXPECT_THAT(reported, ElementsAre(Pair(8192, 0), Pair(9000, 0)));
}

TEST_F(DownloadsTest, NobodyNeedsToListen) {
    answer("https://host/a", "body");
    EXPECT_TRUE(downloadHttpsFile(kAddress, "C:/Test/a", 4, {}, error));
}

TEST_F(DownloadsTest, NoMoreIsReadAtOnceThanTheBufferHolds) {
    answer("https://host/a", std::string(100000, 'a'));
    given().chunkBytes = 100000;
    EXPECT_TRUE(download(100000));
    EXPECT_THAT(callsOf(Operation::readData),
                ElementsAre("https://host/a, 65536 bytes", "https://host/a, 34464 bytes"));
    EXPECT_EQ(contentOfFile("C:/Test/a"), std::string(100000, 'a'));
}

TEST_F(DownloadsTest, ABodyOfAnotherLengthThanAnnouncedIsRefused) {
    answer("https://host/a", "body");
    for (const std::uint64_t told : {std::uint64_t{0}, std::uint64_t{3}, std::uint64_t{5}}) {
        given().toldLength = told;
        EXPECT_FALSE(download(100)) << told;
        EXPECT_EQ(error, kOtherSize) << told;
    }
}

TEST_F(DownloadsTest, AFailureOfTheBodyIsToldWithTheSystemsNumber) {
    answer("https://host/a", "body");
    harm(Operation::queryDataAvailable, {.error = 12002});
    EXPECT_FALSE(download(100));
    EXPECT_EQ(error, L"Unable to read the HTTPS update response (Windows error 12002)");
    harm(Operation::readData, {.error = 12030});
    EXPECT_FALSE(download(100));
    EXPECT_EQ(error, L"The HTTPS update download ended unexpectedly (Windows error 12030)");
    harm(Operation::readData, {.error = 0});
    EXPECT_FALSE(download(100));
    EXPECT_EQ(error.substr(0, 61), L"The HTTPS update download ended unexpectedly (Windows error 1");
}

TEST_F(DownloadsTest, AFileThatCannotBeMadeFilledOrClosedIsToldApart) {
    answer("https://host/a", "body");
    harm(Operation::createToWrite, {.error = 5});
    EXPECT_FALSE(download(100));
    EXPECT_EQ(error, L"Unable to create the temporary update archive.");
    harm(Operation::writeBytes, {.error = 112});
    EXPECT_FALSE(download(100));
    EXPECT_EQ(error, kNotStored);
    harm(Operation::closeFile, {.error = 112, .effect = Extent::part});
    EXPECT_FALSE(download(100));
    EXPECT_EQ(error, L"Unable to finish the temporary update archive.");
}

TEST_F(DownloadsTest, ASinkMayTellItsOwnSentence) {
    answer("https://host/a", "body");
    InternetHandle session;
    InternetHandle connection;
    InternetHandle request;
    error.clear();
    ASSERT_TRUE(openHttpsRequest(kAddress, session, connection, request, error));
    const auto refuse = [this](const char*, std::uint64_t) {
        error = L"full";
        return false;
    };
    EXPECT_FALSE(readResponseBody(request, 100, refuse, {}, error));
    EXPECT_EQ(error, L"full");
}

TEST_F(DownloadsTest, AManifestMayBeAsLargeAsItsLimitAndNoLarger) {
    Manifest manifest;
    answer("https://host/a", std::string(kMaxManifestBytes, 'a'));
    EXPECT_FALSE(fetchManifest(kAddress, manifest, error));
    EXPECT_EQ(error, L"Manifest header is invalid.");
    answer("https://host/a", std::string(kMaxManifestBytes + 1, 'a'));
    EXPECT_FALSE(fetchManifest(kAddress, manifest, error));
    EXPECT_EQ(error, kTooLarge);
}

}  // namespace
}  // namespace vorthmere::update::simulation
