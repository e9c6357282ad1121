#include "tests/simulation/internet.h"

#include <algorithm>
#include <limits>

#include "tests/simulation/names.h"

namespace vorthmere::update::simulation {
namespace {

constexpr int kMostRedirects = 10;

/// The name in a header line, as it is compared.
std::string headerName(std::string_view line) {
    return keyOf(line.substr(0, line.find(':')));
}

/// The value in a header line "name: value CR LF".
std::string headerValue(std::string_view line) {
    line.remove_prefix(std::min(line.find_first_not_of(": ", line.find(':')), line.size()));
    return std::string(line.substr(0, line.find("\r\n")));
}

bool isRedirect(const Answer& answer) {
    return answer.status >= 300 && answer.status < 400 && !answer.location.empty();
}

}  // namespace

bool Internet::fail(Error error) {
    lastError = error;
    return false;
}

HandleId Internet::add(Handle handle) {
    handle.id = nextHandle_ += 4;
    handles_.push_back(std::move(handle));
    return nextHandle_;
}

Internet::Handle* Internet::find(HandleId id, Kind kind) {
    const auto at = std::find_if(handles_.begin(), handles_.end(),
                                 [=](const Handle& handle) { return handle.id == id && handle.kind == kind; });
    if (at == handles_.end()) {
        lastError = error::wrongHandleType;
        return nullptr;
    }
    return &*at;
}

HandleId Internet::openSession() {
    Handle session;
    session.address = "a session";
    return add(std::move(session));
}

void Internet::setReceiveTimeout(HandleId session, std::uint64_t receiveMs) {
    if (Handle* handle = find(session, Kind::session)) handle->receiveMs = receiveMs;
}

HandleId Internet::connectTo(HandleId session, std::string_view host, std::uint16_t port) {
    const Handle* parent = find(session, Kind::session);
    if (parent == nullptr) return 0;
    Handle connection;
    connection.kind = Kind::connection;
    connection.receiveMs = parent->receiveMs;
    connection.address = "https://" + std::string(host);
    if (port != kHttpsPort) connection.address += ":" + std::to_string(port);
    return add(std::move(connection));
}

HandleId Internet::createSecureGet(HandleId connection, std::string_view objectName) {
    const Handle* host = find(connection, Kind::connection);
    if (host == nullptr) return 0;
    Handle request;
    request.kind = Kind::request;
    request.receiveMs = host->receiveMs;
    request.address = host->address + std::string(objectName);
    request.request.address = request.address;
    return add(std::move(request));
}

void Internet::disableRedirects(HandleId request) {
    if (Handle* handle = find(request, Kind::request)) handle->request.followsRedirects = false;
}

void Internet::setHeader(HandleId request, std::string_view line) {
    Handle* handle = find(request, Kind::request);
    if (handle == nullptr) return;
    std::erase_if(handle->request.headers,
                  [name = headerName(line)](const std::string& known) { return headerName(known) == name; });
    handle->request.headers.emplace_back(line);
}

Answer Internet::answerTo(const SentRequest& request) const {
    const auto known = answers.find(request.address);
    if (known == answers.end()) {
        Answer unknown;
        unknown.status = 404;
        return unknown;
    }
    Answer answer = known->second;
    const auto repeated = std::find_if(
        request.headers.begin(), request.headers.end(),
        [name = keyOf(answer.repeatedHeader)](const std::string& line) { return headerName(line) == name; });
    if (repeated != request.headers.end()) answer.body = contentOf(headerValue(*repeated));
    return answer;
}

bool Internet::ask(Handle& request) {
    sent.push_back(request.request);
    if (channelError != error::none) return fail(channelError);
    request.answer = answerTo(request.request);
    request.isSent = true;
    return request.answer.sendError == error::none || fail(request.answer.sendError);
}

bool Internet::send(HandleId request) {
    Handle* handle = find(request, Kind::request);
    return handle != nullptr && ask(*handle);
}

bool Internet::receive(HandleId request, std::uint64_t& nowMs) {
    Handle* handle = find(request, Kind::request);
    if (handle == nullptr) return false;
    if (!handle->isSent) return fail(error::wrongHandleState);
    const Answer& answer = handle->answer;
    nowMs += std::min(answer.waitMs, handle->receiveMs);
    if (answer.waitMs > handle->receiveMs) return fail(error::timedOut);
    if (answer.answerError != error::none) return fail(answer.answerError);
    if (handle->request.followsRedirects && isRedirect(answer)) {
        if (++handle->redirects > kMostRedirects) return fail(error::redirectFailed);
        handle->request.address = answer.location;
        return ask(*handle) && receive(request, nowMs);
    }
    handle->isAnswered = true;
    return true;
}

Internet::Handle* Internet::answered(HandleId request) {
    Handle* handle = find(request, Kind::request);
    if (handle == nullptr || handle->isAnswered) return handle;
    lastError = error::wrongHandleState;
    return nullptr;
}

bool Internet::status(HandleId request, std::uint32_t& status) {
    const Handle* handle = answered(request);
    if (handle == nullptr) return false;
    status = handle->answer.status;
    return true;
}

bool Internet::contentLength(HandleId request, std::uint32_t& length) {
    const Handle* handle = answered(request);
    if (handle == nullptr) return false;
    const Answer& answer = handle->answer;
    if (!answer.tellsLength) return fail(error::headerNotFound);
    const std::uint64_t told = answer.toldLength.value_or(answer.body->size());
    if (told > std::numeric_limits<std::uint32_t>::max()) return fail(error::headerNotFound);
    length = static_cast<std::uint32_t>(told);
    return true;
}

// The count stays the same until its bytes are read.
bool Internet::available(HandleId request, std::uint32_t& bytes) {
    bytes = 0;
    const Handle* handle = answered(request);
    if (handle == nullptr) return false;
    const Answer& answer = handle->answer;
    const std::uint64_t end =
        std::min<std::uint64_t>(answer.breaksOffAfter.value_or(answer.body->size()), answer.body->size());
    if (handle->position >= end && answer.breaksOffAfter) return fail(answer.bodyError);
    bytes = static_cast<std::uint32_t>(std::min<std::uint64_t>(answer.chunkBytes, end - handle->position));
    return true;
}

bool Internet::read(HandleId request, char* buffer, std::uint32_t size, std::uint32_t& count) {
    count = 0;
    Handle* handle = answered(request);
    if (handle == nullptr) return false;
    const Answer& answer = handle->answer;
    const std::uint64_t end =
        std::min<std::uint64_t>(answer.breaksOffAfter.value_or(answer.body->size()), answer.body->size());
    if (handle->position >= end && answer.breaksOffAfter) return fail(answer.bodyError);
    const auto most = static_cast<std::size_t>(std::min<std::uint64_t>(size, end - handle->position));
    count = static_cast<std::uint32_t>(answer.body->copy(buffer, most, static_cast<std::size_t>(handle->position)));
    handle->position += count;
    return true;
}

bool Internet::close(HandleId id) {
    return std::erase_if(handles_, [id](const Handle& handle) { return handle.id == id; }) > 0;
}

std::string Internet::nameOf(HandleId id) const {
    const auto at =
        std::find_if(handles_.begin(), handles_.end(), [id](const Handle& handle) { return handle.id == id; });
    return at == handles_.end() ? std::string() : at->address;
}

std::vector<std::string> Internet::openHandles() const {
    std::vector<std::string> open;
    for (const Handle& handle : handles_)
        open.push_back(handle.kind == Kind::request ? "the request of " + handle.address : handle.address);
    return open;
}

void Internet::closeAllHandles() {
    handles_.clear();
}

}  // namespace vorthmere::update::simulation
