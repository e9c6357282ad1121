#include "update/ascii.h"

#include <gtest/gtest.h>

#include <string>

namespace vorthmere::update {
namespace {

const std::string kLower = "abcdefghijklmnopqrstuvwxyz";
const std::string kUpper = "ABCDEFGHIJKLMNOPQRSTUVWXYZ";

TEST(Ascii, SortsEveryByteIntoItsClasses) {
    for (int value = 0; value < 256; ++value) {
        const char byte = static_cast<char>(value);
        const bool digit = std::string("0123456789").find(byte) != std::string::npos;
        const bool letter = (kLower + kUpper).find(byte) != std::string::npos;
        EXPECT_EQ(isAsciiDigit(byte), digit) << "byte " << value;
        EXPECT_EQ(isAsciiLetter(byte), letter) << "byte " << value;
        EXPECT_EQ(isPrintableAscii(byte), value >= 32 && value <= 126) << "byte " << value;
    }
}

TEST(Ascii, ConvertsLettersOnly) {
    EXPECT_EQ(toAsciiLower(kLower + kUpper), kLower + kLower);
    EXPECT_EQ(toAsciiUpper(kLower + kUpper), kUpper + kUpper);
    std::string others;
    for (int value = 0; value < 256; ++value)
        if ((kLower + kUpper).find(static_cast<char>(value)) == std::string::npos)
            others.push_back(static_cast<char>(value));
    ASSERT_EQ(others.size(), 256U - 52);
    EXPECT_EQ(toAsciiLower(others), others);
    EXPECT_EQ(toAsciiUpper(others), others);
}

}  // namespace
}  // namespace vorthmere::update
