#include "publisher/console.h"

#include <gmock/gmock.h>

#include <sstream>

namespace vorthmere::publish::testing {
namespace {

TEST(Console, WithoutATerminalEveryStepIsOneLine) {
    std::ostringstream output;
    Console console(output, false);
    console.beginStep("Packing", 100);
    console.advance(50);
    console.advance(50);
    console.endStep();
    console.line("Done.");
    EXPECT_EQ(output.str(), "Packing...\nDone.\n");
}

TEST(Console, OnATerminalABarFillsUp) {
    std::ostringstream output;
    Console console(output, true);
    console.beginStep("Packing", 200);
    console.advance(100);
    console.advance(200);
    console.endStep();
    EXPECT_EQ(output.str(),
              "\r[..............................] 0% Packing"
              "\r[###############...............] 50% Packing"
              "\r[##############################] 100% Packing\n");
}

TEST(Console, BarStaysOnOneLine) {
    constexpr unsigned kWidth = 60;
    std::ostringstream output;
    Console console(output, true, kWidth);
    console.beginStep("Packing 1,000 files and writing 1,000 new objects", 1);
    console.advance(1);
    for (std::size_t begin = output.str().find('\r'); begin != std::string::npos;) {
        const std::size_t end = output.str().find('\r', begin + 1);
        EXPECT_LT(output.str().substr(begin + 1, end - begin - 1).size(), kWidth);
        begin = end;
    }
    EXPECT_THAT(output.str(), ::testing::HasSubstr("100% Packing 1"));
}

TEST(Console, StepWithoutBytesDoesNotDivideByThem) {
    std::ostringstream output;
    Console console(output, true);
    console.beginStep("Nothing", 0);
    console.advance(0);
    console.endStep();
    EXPECT_THAT(output.str(), ::testing::EndsWith("100% Nothing\n"));
}

TEST(Console, NumbersAreWrittenForPeople) {
    EXPECT_EQ(countOf(1, "file"), "1 file");
    EXPECT_EQ(countOf(0, "file"), "0 files");
    EXPECT_EQ(countOf(1000, "file"), "1,000 files");
    EXPECT_EQ(countOf(1234567, "byte"), "1,234,567 bytes");
    EXPECT_EQ(sizeOf(1023), "1,023 bytes");
    EXPECT_EQ(sizeOf(1536), "1.5 KiB (1,536 bytes)");
    EXPECT_EQ(sizeOf(3221225472), "3.0 GiB (3,221,225,472 bytes)");
}

}  // namespace
}  // namespace vorthmere::publish::testing
