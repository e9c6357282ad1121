#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tests/simulation/windows_numbers.h"
#include "tests/support/sha256.h"

namespace vorthmere::update::simulation {

using testing::sha256TextOf;
using DigestValue = testing::Sha256::Value;

/// The system's SHA-256. A digest's state lies in the memory that the caller gave, and closing the digest writes there.
/// So a sanitizer sees memory that was freed too early.
class Digests {
public:
    HandleId openProvider();
    bool memorySize(HandleId provider, std::uint32_t& bytes) const;
    HandleId begin(HandleId provider, std::uint8_t* memory, std::uint32_t memoryBytes);
    bool add(HandleId digest, const std::uint8_t* bytes, std::uint32_t count);
    bool finish(HandleId digest, DigestValue& value);
    bool closeProvider(HandleId provider);
    bool closeDigest(HandleId digest);

    [[nodiscard]] std::vector<std::string> openHandles() const;
    /// Forgets all handles without touching their memory.
    void closeAllHandles();

private:
    struct Handle {
        HandleId id = 0;
        std::uint8_t* memory = nullptr;  ///< null for a provider
        bool isFinished = false;
    };
    [[nodiscard]] const Handle* find(HandleId id, bool isProvider) const;
    bool close(HandleId id, bool isProvider);

    std::vector<Handle> handles_;
    HandleId nextHandle_ = 0x200000;
};

}  // namespace vorthmere::update::simulation
