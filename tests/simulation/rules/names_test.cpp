#include "tests/simulation/names.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace vorthmere::update::simulation {
namespace {

TEST(SimulatedNames, AreComparedWithoutRegardToCase) {
    EXPECT_TRUE(isSameName("Data", "dATA"));
    EXPECT_TRUE(isSameName("\xC3\xA4", "\xC3\x84"));  // a umlaut
    EXPECT_TRUE(isSameName("\xD0\xB6", "\xD0\x96"));  // Cyrillic zhe
    EXPECT_FALSE(isSameName("data", "data1"));
    EXPECT_FALSE(isSameName("\xC3\xB7", "\xC3\x97"));  // the division sign is no small letter
    EXPECT_FALSE(isSameName("a_", "A^"));
    EXPECT_EQ(keyOf("Stra\xC3\x9F"
                    "e_1"),
              "STRA\xC3\x9F"
              "E_1");
}

TEST(SimulatedNames, AreFoldedTheSameWayWhereverTheKeyIsKept) {
    const std::string longName(100, 'x');
    for (const std::string& name : {std::string("a_B.pak"), std::string(), longName, std::string(64, 'y'),
                                    std::string(65, 'z'), std::string("\xC3\xA4"), longName + "\xC3\xA4"})
        EXPECT_EQ(FoldedName(name).key(), keyOf(name)) << name;
}

TEST(SimulatedNames, AreRefusedWithLettersThatNoFileMayHave) {
    for (const std::string name : {"a<", ">a", "a:b", "a\"", "a|b", "a?", "*", "a\x01", "\x1F"})
        EXPECT_EQ(nameError(name), error::invalidName) << name;
    for (const std::string name : {"a", "a b", ".a", "a;b", "\xC3\xA4", "a~1"})
        EXPECT_EQ(nameError(name), error::none) << name;
}

TEST(SimulatedNames, HaveAtMost255Utf16Units) {
    EXPECT_EQ(nameError(std::string(255, 'a')), error::none);
    EXPECT_EQ(nameError(std::string(256, 'a')), error::invalidName);
    std::string umlauts;
    for (int i = 0; i < 255; ++i)
        umlauts += "\xC3\xA4";
    EXPECT_EQ(nameError(umlauts), error::none);
    EXPECT_EQ(nameError(umlauts + "a"), error::invalidName);
    EXPECT_EQ(utf16Length("\xF0\x9F\x8E\xAE"), 2U);
}

TEST(SimulatedNames, KnowTheDevices) {
    for (const std::string name : {"NUL", "con", "Prn", "aux", "COM1", "lpt9", "COM\xC2\xB2", "CONIN$", "conout$"})
        EXPECT_TRUE(isDeviceName(name, false)) << name;
    for (const std::string name : {"nul.txt", "NUL .txt", "com1.a.b", "aux "})
        EXPECT_TRUE(isDeviceName(name, true)) << name;
    for (const std::string name : {"nul.txt", "NUL .txt", "aux."})
        EXPECT_FALSE(isDeviceName(name, false)) << name;
    for (const std::string name : {"COM0", "LPT", "COM10", "nula", "xnul", "n", "", "COM\xC2\xB4"})
        EXPECT_FALSE(isDeviceName(name, true)) << name;
}

struct Folded {
    std::string path;
    std::string full;
};

TEST(SimulatedNames, AreFoldedToAFullPathAsWindowsDoesIt) {
    const std::vector<Folded> cases = {
        {"C:\\Games\\a.pak", "C:/Games/a.pak"},
        {"C:/Games/./x/../a.pak", "C:/Games/a.pak"},
        {"C:/..", "C:/"},
        {"C:/../..//a", "C:/a"},
        {"C:/", "C:/"},
        {"a", "C:/Now/here/a"},
        {"..", "C:/Now"},
        {"../../../..", "C:/"},
        {".", "C:/Now/here"},
        {"/a", "C:/a"},
        {"C:", "C:/Now/here"},
        {"C:a", "C:/Now/here/a"},
        {"D:", "D:/"},
        {"D:a", "D:/a"},
        {"C:/Games/", "C:/Games"},
        {"C:/a. .", "C:/a"},
        {"C:/a /b", "C:/a /b"},
        {"C:/a./b", "C:/a/b"},
        {"C:/a../b", "C:/a../b"},
        {"C:/a/...", "C:/a"},
        {"//server/share/a/..", "//server/share/"},
        {"\\\\server\\share\\..\\a", "//server/share/a"},
        {"\\\\?\\C:\\a. ", "C:/a. "},
        {"\\\\?\\UNC\\server\\share\\a", "//server/share/a"},
    };
    for (const Folded& each : cases)
        EXPECT_EQ(fullPathOf(each.path, "C:/Now/here").text, each.full) << each.path;
    EXPECT_TRUE(fullPathOf("C:/Games/", "C:/").endsInSeparator);
    EXPECT_FALSE(fullPathOf("C:/Games", "C:/").endsInSeparator);
    EXPECT_TRUE(fullPathOf("\\\\?\\C:\\a", "C:/").isExtended);
}

}  // namespace
}  // namespace vorthmere::update::simulation
