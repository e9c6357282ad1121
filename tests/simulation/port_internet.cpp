#include <algorithm>

#include "platform/https.h"
#include "tests/simulation/passage.h"

namespace vorthmere::update {

using namespace simulation;

namespace {

constexpr Error kFirstErrorNumber = 1000;

std::string nameOfHandle(void* handle) {
    return currentGate().machine().internet.nameOf(toId(handle));
}

/// The error of a call of the client.
Error told(Machine& machine, bool succeeded) {
    return succeeded ? error::none : machine.internet.lastError;
}

template <typename Work>
InternetHandle open(Operation operation, const std::string& subject, Work work) {
    HandleId handle = 0;
    (void)passWhole(operation, subject, "", [&](Machine& machine) {
        handle = work(machine.internet);
        return told(machine, handle != 0);
    });
    return InternetHandle(toHandle(handle));
}

template <typename Work>
bool ask(Operation operation, const InternetHandle& request, Work work) {
    return passWhole(operation, nameOfHandle(request.get()), "",
                     [&](Machine& machine) { return told(machine, work(machine)); }) == error::none;
}

}  // namespace

void closeInternetHandle(void* handle) noexcept {
    if (isAnyRunning() && handle != nullptr)
        passClosing(Operation::closeInternetHandle, nameOfHandle(handle),
                    [handle](Machine& machine) { return machine.internet.close(toId(handle)); });
}

bool crackAddress(const std::wstring& address, InternetAddress& parts) {
    const std::string text = narrowOf(address);
    Internet::Address cracked;
    const Error result = passWhole(Operation::crackAddress, text, "", [&](Machine&) {
        return Internet::crack(text, cracked) ? error::none : error::unknownScheme;
    });
    if (result != error::none) return false;
    parts = {cracked.isHttps, wideOf(cracked.host), cracked.port, wideOf(cracked.path), wideOf(cracked.extraInfo)};
    return true;
}

InternetHandle openSession(const wchar_t* userAgent) {
    return open(Operation::openSession, narrowOf(userAgent), [](Internet& internet) { return internet.openSession(); });
}

void setTimeouts(const InternetHandle& session, const InternetTimeouts& timeouts) {
    const std::string text = std::to_string(timeouts.resolve) + " " + std::to_string(timeouts.connect) + " " +
                             std::to_string(timeouts.send) + " " + std::to_string(timeouts.receive) + " ms";
    (void)passWhole(Operation::setTimeouts, nameOfHandle(session.get()), text, [&](Machine& machine) {
        machine.internet.setReceiveTimeout(toId(session.get()), static_cast<std::uint64_t>(timeouts.receive));
        return error::none;
    });
}

InternetHandle connectTo(const InternetHandle& session, const std::wstring& host, std::uint16_t port) {
    const std::string name = narrowOf(host);
    return open(Operation::connectTo, name + ":" + std::to_string(port),
                [&](Internet& internet) { return internet.connectTo(toId(session.get()), name, port); });
}

InternetHandle createSecureGet(const InternetHandle& connection, const std::wstring& objectName) {
    const std::string name = narrowOf(objectName);
    return open(Operation::createSecureGet, nameOfHandle(connection.get()) + name,
                [&](Internet& internet) { return internet.createSecureGet(toId(connection.get()), name); });
}

void disableRedirects(const InternetHandle& request) {
    (void)ask(Operation::disableRedirects, request, [&](Machine& machine) {
        machine.internet.disableRedirects(toId(request.get()));
        return true;
    });
}

void setHeader(const InternetHandle& request, const wchar_t* line) {
    (void)ask(Operation::setHeader, request, [&](Machine& machine) {
        machine.internet.setHeader(toId(request.get()), narrowOf(line));
        return true;
    });
}

bool sendRequest(const InternetHandle& request) {
    return ask(Operation::sendRequest, request,
               [&](Machine& machine) { return machine.internet.send(toId(request.get())); });
}

bool receiveResponse(const InternetHandle& request) {
    return ask(Operation::receiveResponse, request, [&](Machine& machine) {
        return machine.internet.receive(toId(request.get()), machine.processes.nowMs);
    });
}

// A fault with a number below the error numbers is another HTTP status.
bool queryStatus(const InternetHandle& request, std::uint32_t& status) {
    const Error result = passWhole(
        Operation::queryStatus, nameOfHandle(request.get()), "",
        [&](Machine& machine) { return told(machine, machine.internet.status(toId(request.get()), status)); }, &status);
    if (result != error::none && result < kFirstErrorNumber) status = result;
    return result < kFirstErrorNumber;
}

bool queryContentLength(const InternetHandle& request, std::uint32_t& length) {
    return passWhole(
               Operation::queryContentLength, nameOfHandle(request.get()), "",
               [&](Machine& machine) {
                   return told(machine, machine.internet.contentLength(toId(request.get()), length));
               },
               &length) == error::none;
}

bool queryDataAvailable(const InternetHandle& request, std::uint32_t& available) {
    available = 0;
    return passWhole(
               Operation::queryDataAvailable, nameOfHandle(request.get()), "",
               [&](Machine& machine) {
                   return told(machine, machine.internet.available(toId(request.get()), available));
               },
               &available) == error::none;
}

bool readData(const InternetHandle& request, char* buffer, std::uint32_t size, std::uint32_t& count) {
    count = 0;
    const auto read = [&](Machine& machine, Extent extent) {
        const std::uint32_t most = extent == Extent::part ? std::max<std::uint32_t>(size / 2, 1) : size;
        return told(machine, machine.internet.read(toId(request.get()), buffer, most, count));
    };
    return pass(Operation::readData, nameOfHandle(request.get()), std::to_string(size) + " bytes", read, &count) ==
           error::none;
}

}  // namespace vorthmere::update
