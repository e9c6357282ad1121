#include "tests/simulation/digests.h"

#include <algorithm>
#include <cstring>

namespace vorthmere::update::simulation {
namespace {

using State = testing::Sha256;

State stateIn(const std::uint8_t* memory) {
    State state;
    std::memcpy(&state, memory, sizeof(state));
    return state;
}

void store(const State& state, std::uint8_t* memory) {
    std::memcpy(memory, &state, sizeof(state));
}

}  // namespace

HandleId Digests::openProvider() {
    handles_.push_back({nextHandle_ += 4, nullptr, false});
    return nextHandle_;
}

bool Digests::memorySize(HandleId provider, std::uint32_t& bytes) const {
    bytes = static_cast<std::uint32_t>(sizeof(State));
    return find(provider, true) != nullptr;
}

HandleId Digests::begin(HandleId provider, std::uint8_t* memory, std::uint32_t memoryBytes) {
    if (find(provider, true) == nullptr || memory == nullptr || memoryBytes < sizeof(State)) return 0;
    store(State(), memory);
    handles_.push_back({nextHandle_ += 4, memory, false});
    return nextHandle_;
}

bool Digests::add(HandleId digest, const std::uint8_t* bytes, std::uint32_t count) {
    const Handle* handle = find(digest, false);
    if (handle == nullptr || handle->isFinished) return false;
    State state = stateIn(handle->memory);
    state.add(bytes, count);
    store(state, handle->memory);
    return true;
}

bool Digests::finish(HandleId digest, DigestValue& value) {
    const Handle* handle = find(digest, false);
    if (handle == nullptr || handle->isFinished) return false;
    value = stateIn(handle->memory).finish();
    handles_[static_cast<std::size_t>(handle - handles_.data())].isFinished = true;
    return true;
}

const Digests::Handle* Digests::find(HandleId id, bool isProvider) const {
    const auto at = std::find_if(handles_.begin(), handles_.end(), [=](const Handle& handle) {
        return handle.id == id && (handle.memory == nullptr) == isProvider;
    });
    return at == handles_.end() ? nullptr : &*at;
}

bool Digests::close(HandleId id, bool isProvider) {
    const Handle* handle = find(id, isProvider);
    if (handle == nullptr) return false;
    if (!isProvider) std::memset(handle->memory, 0, sizeof(State));
    handles_.erase(handles_.begin() + (handle - handles_.data()));
    return true;
}

bool Digests::closeProvider(HandleId provider) {
    return close(provider, true);
}

bool Digests::closeDigest(HandleId digest) {
    return close(digest, false);
}

std::vector<std::string> Digests::openHandles() const {
    std::vector<std::string> open;
    for (const Handle& handle : handles_)
        open.emplace_back(handle.memory == nullptr ? "the SHA-256 provider" : "a digest");
    return open;
}

void Digests::closeAllHandles() {
    handles_.clear();
}

}  // namespace vorthmere::update::simulation
