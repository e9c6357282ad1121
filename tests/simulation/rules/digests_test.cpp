#include "tests/simulation/digests.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <vector>

namespace vorthmere::update::simulation {
namespace {

using ::testing::Each;
using ::testing::ElementsAre;

DigestValue digestOf(std::string_view text) {
    testing::Sha256 digest;
    digest.add(reinterpret_cast<const std::uint8_t*>(text.data()), text.size());
    return digest.finish();
}

TEST(SimulatedDigests, AreThoseOfThePublishedExamples) {
    EXPECT_EQ(sha256TextOf(""), "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");
    EXPECT_EQ(sha256TextOf("abc"), "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
    EXPECT_EQ(sha256TextOf("abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq"),
              "248d6a61d20638b8e5c026930c3e6039a33ce45964ff2167f6ecedd419db06c1");
    EXPECT_EQ(sha256TextOf(std::string(1000000, 'a')),
              "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0");
}

TEST(SimulatedDigests, AreTheSameInPieces) {
    Digests digests;
    const HandleId provider = digests.openProvider();
    std::uint32_t size = 0;
    ASSERT_TRUE(digests.memorySize(provider, size));
    const std::string text(200, 'x');
    for (std::uint32_t cut = 0; cut <= 200; ++cut) {
        std::vector<std::uint8_t> memory(size);
        const auto* bytes = reinterpret_cast<const std::uint8_t*>(text.data());
        const HandleId digest = digests.begin(provider, memory.data(), size);
        ASSERT_TRUE(digests.add(digest, bytes, cut) && digests.add(digest, bytes + cut, 200 - cut));
        DigestValue value{};
        ASSERT_TRUE(digests.finish(digest, value));
        EXPECT_EQ(value, digestOf(text)) << cut;
        EXPECT_TRUE(digests.closeDigest(digest));
    }
}

TEST(SimulatedDigests, LieInTheMemoryThatTheyWereGiven) {
    Digests digests;
    const HandleId provider = digests.openProvider();
    std::uint32_t size = 0;
    ASSERT_TRUE(digests.memorySize(provider, size));
    std::vector<std::uint8_t> memory(size, 1);
    const HandleId digest = digests.begin(provider, memory.data(), size);
    memory[0] = static_cast<std::uint8_t>(~memory[0]);
    DigestValue value{};
    ASSERT_TRUE(digests.finish(digest, value));
    EXPECT_NE(value, digestOf(""));
    EXPECT_TRUE(digests.closeDigest(digest));
    EXPECT_THAT(memory, Each(0));
}

TEST(SimulatedDigests, RefuseWrongUse) {
    Digests digests;
    const HandleId provider = digests.openProvider();
    std::uint32_t size = 0;
    ASSERT_TRUE(digests.memorySize(provider, size));
    EXPECT_FALSE(digests.memorySize(provider + 4, size));
    std::vector<std::uint8_t> memory(size);
    EXPECT_EQ(digests.begin(provider, memory.data(), size - 1), 0U);
    EXPECT_EQ(digests.begin(provider, nullptr, size), 0U);
    const HandleId digest = digests.begin(provider, memory.data(), size);
    DigestValue value{};
    EXPECT_TRUE(digests.finish(digest, value));
    EXPECT_FALSE(digests.finish(digest, value));
    EXPECT_FALSE(digests.add(digest, memory.data(), 1));
    EXPECT_THAT(digests.openHandles(), ElementsAre("the SHA-256 provider", "a digest"));
    EXPECT_FALSE(digests.closeProvider(digest));
    EXPECT_FALSE(digests.closeDigest(provider));
    EXPECT_TRUE(digests.closeDigest(digest));
    EXPECT_FALSE(digests.closeDigest(digest));
    EXPECT_TRUE(digests.closeProvider(provider));
}

}  // namespace
}  // namespace vorthmere::update::simulation
