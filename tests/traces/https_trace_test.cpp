#include <cstring>

#include "tests/support/temporary_folder.h"
#include "tests/traces/trace_fixture.h"
#include "transfer/downloads.h"

namespace vorthmere::update::traces {
namespace {

const HINTERNET kSession = fakeHandle(0x2000);
const HINTERNET kConnection = fakeHandle(0x2004);
const HINTERNET kRequest = fakeHandle(0x2008);
constexpr DWORD kBodyBytes = 200'000;

/// How much of the body was read, and the most that one read asked for.
DWORD bodyRead = 0;
DWORD mostAsked = 0;

void note(const std::string& call, std::initializer_list<std::string> arguments) {
    std::string line = call;
    for (const std::string& argument : arguments)
        line += " " + argument;
    log().push_back(line);
}

// The functions below are a client whose server delivers the whole body at once.

HINTERNET WINAPI openClient(const wchar_t* agent, DWORD proxyType, const wchar_t* proxy, const wchar_t* bypass,
                            DWORD flags) {
    note("open", {textOf(agent), std::to_string(proxyType), textOf(proxy), textOf(bypass), std::to_string(flags)});
    return kSession;
}
BOOL WINAPI setTimes(HINTERNET session, int resolve, int connect, int send, int receive) {
    EXPECT_EQ(session, kSession);
    note("timeouts", {std::to_string(resolve), std::to_string(connect), std::to_string(send), std::to_string(receive)});
    return TRUE;
}
HINTERNET WINAPI connectClient(HINTERNET session, const wchar_t* host, INTERNET_PORT port, DWORD reserved) {
    EXPECT_EQ(session, kSession);
    EXPECT_EQ(reserved, 0u);
    note("connect", {textOf(host), std::to_string(port)});
    return kConnection;
}
HINTERNET WINAPI openRequest(HINTERNET connection, const wchar_t* verb, const wchar_t* object, const wchar_t* version,
                             const wchar_t* referrer, const wchar_t** types, DWORD flags) {
    EXPECT_EQ(connection, kConnection);
    EXPECT_EQ(types, nullptr);
    note("request", {textOf(verb), textOf(object), textOf(version), textOf(referrer),
                     flags == WINHTTP_FLAG_SECURE ? "secure" : std::to_string(flags)});
    return kRequest;
}
BOOL WINAPI setOption(HINTERNET request, DWORD option, void* value, DWORD size) {
    EXPECT_EQ(request, kRequest);
    EXPECT_EQ(size, sizeof(DWORD));
    DWORD number = 0;
    std::memcpy(&number, value, sizeof(number));
    const bool isExpected = option == WINHTTP_OPTION_DISABLE_FEATURE && number == WINHTTP_DISABLE_REDIRECTS;
    note("option", {isExpected ? "no redirects" : std::to_string(option)});
    return TRUE;
}
BOOL WINAPI addHeaders(HINTERNET request, const wchar_t* headers, DWORD length, DWORD modifiers) {
    EXPECT_EQ(request, kRequest);
    EXPECT_EQ(length, static_cast<DWORD>(-1));
    const bool isExpected = modifiers == (WINHTTP_ADDREQ_FLAG_ADD | WINHTTP_ADDREQ_FLAG_REPLACE);
    note("header", {textOf(headers), isExpected ? "add or replace" : std::to_string(modifiers)});
    return TRUE;
}
BOOL WINAPI sendIt(HINTERNET request, const wchar_t* headers, DWORD, void* body, DWORD bodySize, DWORD totalSize,
                   DWORD_PTR) {
    EXPECT_EQ(request, kRequest);
    note("send", {textOf(headers), body == nullptr && bodySize + totalSize == 0 ? "no body" : "a body"});
    return TRUE;
}
BOOL WINAPI receiveIt(HINTERNET request, void*) {
    EXPECT_EQ(request, kRequest);
    note("receive", {});
    return TRUE;
}
BOOL WINAPI queryHeaders(HINTERNET, DWORD header, const wchar_t*, void* value, DWORD*, DWORD*) {
    if (header != (WINHTTP_QUERY_STATUS_CODE | WINHTTP_QUERY_FLAG_NUMBER)) return FALSE;
    const DWORD ok = 200;
    std::memcpy(value, &ok, sizeof(ok));
    return TRUE;
}
BOOL WINAPI queryAvailable(HINTERNET, DWORD* bytes) {
    *bytes = kBodyBytes - bodyRead;
    return TRUE;
}
BOOL WINAPI readBody(HINTERNET, void* buffer, DWORD size, DWORD* count) {
    mostAsked = std::max(mostAsked, size);
    *count = std::min<DWORD>(size, 1000);
    std::memset(buffer, 'b', *count);
    bodyRead += *count;
    return TRUE;
}
BOOL WINAPI closeClient(HINTERNET handle) {
    note("close", {handle == kRequest ? "request" : handle == kConnection ? "connection" : "session"});
    SetLastError(ERROR_INVALID_FUNCTION);
    return TRUE;
}

class HttpsTrace : public TraceTest {
protected:
    HttpsTrace() {
        bodyRead = 0;
        mostAsked = 0;
    }

    bool download(const wchar_t* address = L"https://update.invalid:8443/releases/a.pak?x=1") {
        return downloadHttpsFile(address, folder / L"a", 1'000'000, nullptr, error);
    }

    Replaced<decltype(traced_WinHttpOpen)> a{traced_WinHttpOpen, openClient};
    Replaced<decltype(traced_WinHttpSetTimeouts)> b{traced_WinHttpSetTimeouts, setTimes};
    Replaced<decltype(traced_WinHttpConnect)> c{traced_WinHttpConnect, connectClient};
    Replaced<decltype(traced_WinHttpOpenRequest)> d{traced_WinHttpOpenRequest, openRequest};
    Replaced<decltype(traced_WinHttpSetOption)> e{traced_WinHttpSetOption, setOption};
    Replaced<decltype(traced_WinHttpAddRequestHeaders)> f{traced_WinHttpAddRequestHeaders, addHeaders};
    Replaced<decltype(traced_WinHttpSendRequest)> g{traced_WinHttpSendRequest, sendIt};
    Replaced<decltype(traced_WinHttpReceiveResponse)> h{traced_WinHttpReceiveResponse, receiveIt};
    Replaced<decltype(traced_WinHttpQueryHeaders)> i{traced_WinHttpQueryHeaders, queryHeaders};
    Replaced<decltype(traced_WinHttpQueryDataAvailable)> j{traced_WinHttpQueryDataAvailable, queryAvailable};
    Replaced<decltype(traced_WinHttpReadData)> k{traced_WinHttpReadData, readBody};
    Replaced<decltype(traced_WinHttpCloseHandle)> l{traced_WinHttpCloseHandle, closeClient};
    testing::TemporaryFolder folder;
    std::wstring error;
};

TEST_F(HttpsTrace, ARequestIsMadeAsItShouldBeAndClosedFromTheInside) {
    ASSERT_TRUE(download());
    EXPECT_THAT(log(), ElementsAre("open KelvaneAlphaUpdater/1.0 4 null null 0",  // 4: the system's proxy
                                   "timeouts 2500 2500 3000 5000", "connect update.invalid 8443",
                                   "request GET /releases/a.pak?x=1 null null secure", "option no redirects",
                                   "header Cache-Control: no-cache\r\n add or replace", "send null no body", "receive",
                                   "close request", "close connection", "close session"));
    EXPECT_EQ(testing::readFile(folder / L"a"), std::string(kBodyBytes, 'b'));
}

TEST_F(HttpsTrace, NoReadAsksForMoreThanTheBufferHolds) {
    ASSERT_TRUE(download());
    EXPECT_EQ(mostAsked, 65536u);
}

TEST_F(HttpsTrace, AFailedClosingOfTheFileFailsTheDownload) {
    const Replaced closing(traced_CloseHandle, [](HANDLE handle) -> BOOL {
        CloseHandle(handle);
        SetLastError(ERROR_UNEXP_NET_ERR);
        return FALSE;
    });
    EXPECT_FALSE(download());
    EXPECT_EQ(error, L"Unable to finish the temporary update archive.");
}

TEST_F(HttpsTrace, AFailureIsToldByTheErrorOfTheCallThatFailed) {
    const Replaced receiving(traced_WinHttpReceiveResponse, [](HINTERNET, void*) -> BOOL {
        SetLastError(ERROR_WINHTTP_TIMEOUT);
        return FALSE;
    });
    EXPECT_FALSE(download());
    EXPECT_EQ(error, L"The HTTPS update request failed (Windows error 12002)");
    EXPECT_EQ(log().back(), "close session");
}

}  // namespace
}  // namespace vorthmere::update::traces
