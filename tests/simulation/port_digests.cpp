#include <algorithm>

#include "platform/sha256.h"
#include "tests/simulation/passage.h"

namespace vorthmere::update {

using namespace simulation;

namespace {

constexpr Error kInvalidDigest = 0xC0000008;

Error succeeded(bool done) {
    return done ? error::none : kInvalidDigest;
}

}  // namespace

void closeDigestProvider(void* handle) noexcept {
    passClosing(Operation::closeDigestProvider, "",
                [handle](Machine& machine) { return machine.digests.closeProvider(toId(handle)); });
}

void closeDigest(void* handle) noexcept {
    passClosing(Operation::closeDigest, "",
                [handle](Machine& machine) { return machine.digests.closeDigest(toId(handle)); });
}

DigestProvider openSha256() {
    HandleId provider = 0;
    (void)passWhole(Operation::openSha256, "", "", [&](Machine& machine) {
        provider = machine.digests.openProvider();
        return error::none;
    });
    return DigestProvider(toHandle(provider));
}

bool digestMemorySize(const DigestProvider& provider, std::uint32_t& bytes) {
    return passWhole(Operation::digestMemorySize, "", "", [&](Machine& machine) {
               return succeeded(machine.digests.memorySize(toId(provider.get()), bytes));
           }) == error::none;
}

Digest beginDigest(const DigestProvider& provider, std::uint8_t* memory, std::uint32_t memoryBytes) {
    HandleId digest = 0;
    (void)passWhole(Operation::beginDigest, "", "", [&](Machine& machine) {
        digest = machine.digests.begin(toId(provider.get()), memory, memoryBytes);
        return succeeded(digest != 0);
    });
    return Digest(toHandle(digest));
}

bool digestBytes(const Digest& digest, const std::uint8_t* bytes, std::uint32_t count) {
    return passWhole(Operation::digestBytes, "", std::to_string(count) + " bytes", [&](Machine& machine) {
               return succeeded(machine.digests.add(toId(digest.get()), bytes, count));
           }) == error::none;
}

bool finishDigest(const Digest& digest, DigestBytes& value) {
    return passWhole(Operation::finishDigest, "", "", [&](Machine& machine) {
               return succeeded(machine.digests.finish(toId(digest.get()), value));
           }) == error::none;
}

}  // namespace vorthmere::update
