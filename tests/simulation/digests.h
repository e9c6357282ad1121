#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "tests/simulation/windows_numbers.h"

namespace vorthmere::update::simulation {

using DigestValue = std::array<std::uint8_t, 32>;

[[nodiscard]] DigestValue sha256Of(std::string_view bytes);
/// 64 lower-case hexadecimal digits.
[[nodiscard]] std::string sha256TextOf(std::string_view bytes);

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
