#include "update/decimal.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>

namespace vorthmere::update {
namespace {

template <typename Unsigned>
class Decimal : public ::testing::Test {};

using UnsignedTypes = ::testing::Types<std::uint16_t, std::uint32_t, std::uint64_t>;
TYPED_TEST_SUITE(Decimal, UnsignedTypes);

template <typename Unsigned>
void expectRead(const std::string& text, Unsigned expected) {
    Unsigned number = 77;
    EXPECT_TRUE(parseDecimal(std::string_view(text), number)) << text;
    EXPECT_EQ(number, expected) << text;
}

template <typename Unsigned>
void expectRefused(const std::string& text) {
    Unsigned number = 77;
    EXPECT_FALSE(parseDecimal(std::string_view(text), number)) << ::testing::PrintToString(text);
    EXPECT_EQ(number, 77) << ::testing::PrintToString(text);
}

TYPED_TEST(Decimal, ReadsUpToTheLargestNumberOfTheTypeAndNoFurther) {
    constexpr TypeParam largest = std::numeric_limits<TypeParam>::max();
    const std::string digits = std::to_string(largest);
    expectRead<TypeParam>(digits, largest);
    expectRead<TypeParam>("000" + digits, largest);
    expectRead<TypeParam>(std::to_string(largest - 1), largest - 1);
    // Every largest number ends in 5, so the next ones differ in the last digit only.
    ASSERT_EQ(digits.back(), '5');
    for (const char last : std::string("6789"))
        expectRefused<TypeParam>(digits.substr(0, digits.size() - 1) + last);
    for (const char added : std::string("0123456789"))
        expectRefused<TypeParam>(digits + added);
    std::string nextTen = digits;
    ++nextTen[nextTen.size() - 2];
    nextTen.back() = '0';
    expectRefused<TypeParam>(nextTen);
    expectRefused<TypeParam>("1" + digits);
    expectRefused<TypeParam>(std::string(100, '9'));
}

TYPED_TEST(Decimal, ReadsDigitsOnlyAndLeavesTheNumberAloneOtherwise) {
    for (int value = 0; value < 256; ++value) {
        const char byte = static_cast<char>(value);
        if (byte >= '0' && byte <= '9') {
            expectRead<TypeParam>({byte}, static_cast<TypeParam>(byte - '0'));
            continue;
        }
        expectRefused<TypeParam>({byte});
        expectRefused<TypeParam>({byte, '1'});
        expectRefused<TypeParam>({'1', byte});
        expectRefused<TypeParam>({'1', byte, '1'});
    }
    expectRefused<TypeParam>("");
    expectRead<TypeParam>("000", 0);
    expectRead<TypeParam>("1024", 1024);
}

}  // namespace
}  // namespace vorthmere::update
