#include "publisher/channel_file.h"

#include <system_error>

#include "publisher/entry_facts.h"
#include "publisher/in_quotes.h"
#include "publisher/sha256.h"

namespace vorthmere::publish {

using State = ChannelFile::State;

ChannelFile lookAtFile(const std::filesystem::path& path) {
    std::error_code failure;
    const EntryFacts facts = factsOf(path, failure);
    if (failure) return {State::unreadable, 0, inQuotes(path) + " cannot be read: " + failure.message() + "."};
    switch (facts.kind) {
        case EntryKind::missing:
            return {State::missing};
        case EntryKind::link:
            return {State::link};
        case EntryKind::file:
            return {facts.everybodyMayRead ? State::right : State::notForEverybody, facts.size};
        case EntryKind::folder:
        case EntryKind::special:
            break;
    }
    return {State::notAFile};
}

ChannelFile compareFile(const std::filesystem::path& path, std::uint64_t size, std::string_view sha256,
                        const BytesDone& done) {
    ChannelFile found = lookAtFile(path);
    if (!found.isRight()) return found;
    if (found.size != size) {
        found.state = State::wrongSize;
        return found;
    }
    Sha256 digest;
    const ContentSink hash = [&](std::span<const char> bytes) {
        digest.add(bytes);
        done(bytes.size());
        return true;
    };
    if (!readFile(path, hash, found.reason))
        found.state = State::unreadable;
    else if (digest.finish() != sha256)
        found.state = State::corrupt;
    return found;
}

std::string faultOf(const ChannelFile& found, const std::filesystem::path& path, std::uint64_t size) {
    const std::string name = inQuotes(path.filename());
    switch (found.state) {
        case State::right:
            return {};
        case State::missing:
            return name + " is missing.";
        case State::wrongSize:
            return name + " has " + std::to_string(found.size) + " bytes instead of " + std::to_string(size) + ".";
        case State::corrupt:
            return name + " is corrupt: its content does not have the announced SHA-256.";
        case State::unreadable:
            return found.reason;
        case State::notForEverybody:
            return name + " may not be read by every account, so that a web server may be unable to hand it out.";
        case State::link:
            return name + " is a link, which leads out of what is served.";
        case State::notAFile:
            break;
    }
    return name + " is not a regular file.";
}

}  // namespace vorthmere::publish
