// openSha256, digestMemorySize, beginDigest, digestBytes and finishDigest.
#include "platform/sha256.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "platform/failure.h"
#include "tests/contract/scene.h"

namespace vorthmere::update::contract {
namespace {

/// These calls do not report why they fail.
std::error_code asFailure(bool succeeded) {
    return succeeded ? std::error_code() : failureOf(1);
}

class Sha256Contract : public ContractTest {
protected:
    [[nodiscard]] static std::vector<std::uint8_t> memoryFor(const DigestProvider& provider) {
        std::uint32_t bytes = 0;
        EXPECT_TRUE(digestMemorySize(provider, bytes));
        EXPECT_GT(bytes, 0u);
        return std::vector<std::uint8_t>(bytes);
    }

    /// The digest of a text that is added in pieces of this length.
    [[nodiscard]] static std::string digestOf(std::string_view text, std::size_t piece) {
        const DigestProvider provider = openSha256();
        std::vector<std::uint8_t> memory = memoryFor(provider);
        const Digest digest = beginDigest(provider, memory.data(), static_cast<std::uint32_t>(memory.size()));
        EXPECT_TRUE(digest);
        for (std::size_t at = 0; at < text.size(); at += piece) {
            const std::string_view next = text.substr(at, piece);
            EXPECT_TRUE(digestBytes(digest, reinterpret_cast<const std::uint8_t*>(next.data()),
                                    static_cast<std::uint32_t>(next.size())));
        }
        DigestBytes value{};
        EXPECT_TRUE(finishDigest(digest, value));
        std::string hexadecimal;
        for (const std::uint8_t byte : value) {
            constexpr std::string_view digits = "0123456789abcdef";
            hexadecimal += digits[byte >> 4];
            hexadecimal += digits[byte & 15];
        }
        return hexadecimal;
    }
};

// The first three are the standard's own examples.
TEST_F(Sha256Contract, DigestsAreThoseOfTheStandard) {
    const std::string manyAs(1'000'000, 'a');
    const struct {
        std::string_view text;
        std::string_view digest;
    } examples[] = {
        {"abc", "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad"},
        {"abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq",
         "248d6a61d20638b8e5c026930c3e6039a33ce45964ff2167f6ecedd419db06c1"},
        {manyAs, "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0"},
        {"", "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855"},
    };
    for (const auto& example : examples)
        EXPECT_EQ(digestOf(example.text, 65536), example.digest);
}

TEST_F(Sha256Contract, PiecesMakeNoDifference) {
    std::string text;
    for (int i = 0; i < 200; ++i)
        text.push_back(static_cast<char>(i));
    const std::string whole = digestOf(text, text.size());
    for (const std::size_t piece : {1U, 3U, 63U, 64U, 65U, 127U})
        EXPECT_EQ(digestOf(text, piece), whole) << piece;
}

TEST_F(Sha256Contract, AFinishedDigestTakesNoMore) {
    const DigestProvider provider = openSha256();
    std::vector<std::uint8_t> memory = memoryFor(provider);
    const Digest digest = beginDigest(provider, memory.data(), static_cast<std::uint32_t>(memory.size()));
    DigestBytes value{};
    EXPECT_TRUE(finishDigest(digest, value));
    const std::uint8_t byte = 0;
    constexpr std::string_view rule = "a finished digest takes no more";
    EXPECT_TRUE(follows(world, rule, asFailure(digestBytes(digest, &byte, 1)), 1));
    EXPECT_TRUE(follows(world, rule, asFailure(finishDigest(digest, value)), 1));
}

TEST_F(Sha256Contract, TooLittleMemoryIsRefused) {
    const DigestProvider provider = openSha256();
    std::vector<std::uint8_t> memory(1);
    EXPECT_TRUE(follows(world, "too little memory for a digest is refused",
                        asFailure(static_cast<bool>(beginDigest(provider, memory.data(), 1))), 1));
}

}  // namespace
}  // namespace vorthmere::update::contract
