#pragma once

#include <memory>
#include <span>
#include <string>
#include <string_view>

namespace vorthmere::publish {

/// Computes one SHA-256 digest.
///
/// @throws std::runtime_error when the cryptography library fails, which happens only without memory
class Sha256 {
public:
    Sha256();
    void add(std::span<const char> bytes);

    /// To be called once, last.
    ///
    /// @return 64 lower-case hexadecimal digits
    [[nodiscard]] std::string finish();

private:
    struct Release {
        void operator()(void* context) const;
    };
    std::unique_ptr<void, Release> context_;
};

[[nodiscard]] std::string sha256Of(std::string_view text);

}  // namespace vorthmere::publish
