#include "update/sha256_text.h"

#include <gtest/gtest.h>

#include <array>

namespace vorthmere::update {
namespace {

TEST(Sha256Text, HasTwoLowerCaseDigitsForEachByte) {
    std::array<std::uint8_t, kSha256Bytes> digest{};
    for (std::size_t i = 0; i < digest.size(); ++i)
        digest[i] = static_cast<std::uint8_t>(i * 17 / 2);
    EXPECT_EQ(sha256Text(digest), "00081119222a333b444c555d666e777f889099a1aab2bbc3ccd4dde5eef6ff07");
    EXPECT_TRUE(isSha256Text(sha256Text(digest)));
}

}  // namespace
}  // namespace vorthmere::update
