#include "transfer/https_client.h"

#include "tests/simulation/core/bench.h"

namespace vorthmere::update::simulation {
namespace {

using ::testing::ElementsAre;

class HttpsClientTest : public CoreTest {
protected:
    bool open(std::wstring_view address) {
        error.clear();
        InternetHandle session;
        InternetHandle connection;
        InternetHandle request;
        return openHttpsRequest(address, session, connection, request, error);
    }
};

TEST_F(HttpsClientTest, AsksForPathAndQueryAsTheyAreWritten) {
    answer("https://host/a/b?c=d", "");
    answer("https://host:8443/a", "");
    answer("https://host/", "");
    EXPECT_TRUE(open(L"https://host/a/b?c=d"));
    EXPECT_TRUE(open(L"https://host:8443/a"));
    EXPECT_TRUE(open(L"https://host"));
}

TEST_F(HttpsClientTest, IntroducesItselfAndAsksForAFreshAnswerWithoutRedirects) {
    answer("https://host/a", "");
    EXPECT_TRUE(open(L"https://host/a"));
    EXPECT_THAT(callsOf(Operation::openSession), ElementsAre("KelvaneAlphaUpdater/1.0"));
    EXPECT_THAT(callsOf(Operation::setTimeouts), ElementsAre("a session, 2500 2500 3000 5000 ms"));
    ASSERT_EQ(machine.internet.sent.size(), 1U);
    EXPECT_THAT(machine.internet.sent[0].headers, ElementsAre("Cache-Control: no-cache\r\n"));
    EXPECT_FALSE(machine.internet.sent[0].followsRedirects);
}

TEST_F(HttpsClientTest, TakesAnHttpsAddressWithAHostAndNoOther) {
    for (const wchar_t* address : {L"http://host/a", L"https:///a", L"host/a", L""}) {
        EXPECT_FALSE(open(address)) << address;
        EXPECT_EQ(error, L"The update URL is not a valid HTTPS address.") << address;
    }
    EXPECT_THAT(callsOf(Operation::openSession), ElementsAre());
}

TEST_F(HttpsClientTest, EachStepThatFailsHasItsSentenceWithTheSystemsNumber) {
    answer("https://host/a", "");
    const std::pair<Operation, std::wstring> steps[] = {
        {Operation::openSession, L"Unable to initialize the HTTPS update check (Windows error 12004)"},
        {Operation::connectTo, L"Unable to connect to the update host (Windows error 12004)"},
        {Operation::createSecureGet, L"Unable to create the HTTPS update request (Windows error 12004)"},
        {Operation::sendRequest, L"The HTTPS update request failed (Windows error 12004)"},
        {Operation::receiveResponse, L"The HTTPS update request failed (Windows error 12004)"},
    };
    for (const auto& [operation, sentence] : steps) {
        harm(operation, {.error = 12004});
        EXPECT_FALSE(open(L"https://host/a"));
        EXPECT_EQ(error, sentence);
    }
}

TEST_F(HttpsClientTest, TakesNoStatusBut200) {
    for (const std::uint32_t status : {199U, 201U, 206U, 301U, 404U}) {
        answer("https://host/a", "");
        machine.internet.answers["https://host/a"].status = status;
        EXPECT_FALSE(open(L"https://host/a"));
        EXPECT_EQ(error, L"The update host returned HTTP " + std::to_wstring(status) + L".");
    }
    harm(Operation::queryStatus, {.error = 12150});
    EXPECT_FALSE(open(L"https://host/a"));
    EXPECT_EQ(error, L"The update host returned HTTP 0.");
}

}  // namespace
}  // namespace vorthmere::update::simulation
