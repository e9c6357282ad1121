#include "install/command_line_quoting.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#ifdef _WIN32
#include <windows.h>
// After windows.h, which it needs.
#include <shellapi.h>
#endif

namespace vorthmere::update {
namespace {

using Words = std::vector<std::wstring>;

// The platform's rules for the arguments after the program: blanks outside quotes separate them; 2n backslashes before
// a quote are n backslashes, and the quote opens or closes; 2n+1 are n backslashes and a literal quote; inside quotes,
// two quotes are one literal quote.
Words splitByTheRules(const std::wstring& text) {
    Words words;
    std::size_t i = 0;
    while (true) {
        while (i < text.size() && (text[i] == L' ' || text[i] == L'\t'))
            ++i;
        if (i == text.size()) return words;
        std::wstring word;
        bool quoted = false;
        while (i < text.size() && (quoted || (text[i] != L' ' && text[i] != L'\t'))) {
            std::size_t backslashes = 0;
            while (i < text.size() && text[i] == L'\\') {
                ++backslashes;
                ++i;
            }
            if (i == text.size() || text[i] != L'"') {
                word.append(backslashes, L'\\');
                if (backslashes == 0) word.push_back(text[i++]);
                continue;
            }
            word.append(backslashes / 2, L'\\');
            ++i;
            if (backslashes % 2 == 1) {
                word.push_back(L'"');
            } else if (quoted && i < text.size() && text[i] == L'"') {
                word.push_back(L'"');
                ++i;
            } else {
                quoted = !quoted;
            }
        }
        words.push_back(word);
    }
}

#ifdef _WIN32
Words splitByThePlatform(const std::wstring& text) {
    int count = 0;
    wchar_t** const argv = CommandLineToArgvW((L"\"C:\\Windows\\tar.exe\" " + text).c_str(), &count);
    Words words(argv + 1, argv + count);
    LocalFree(argv);
    return words;
}
#endif

void expectReadBack(const Words& words) {
    std::wstring text;
    for (const std::wstring& word : words)
        text += (text.empty() ? L"" : L" ") + quoteCommandLineArgument(word);
    EXPECT_EQ(splitByTheRules(text), words) << ::testing::PrintToString(text);
#ifdef _WIN32
    EXPECT_EQ(splitByThePlatform(text), words) << ::testing::PrintToString(text);
#endif
}

TEST(CommandLineQuoting, WritesQuotesAndEscapesOnlyWhatNeedsThem) {
    const struct {
        std::wstring text;
        std::wstring quoted;
    } rows[] = {
        {L"", LR"("")"},
        {L"-tf", LR"("-tf")"},
        {L"a b", LR"("a b")"},
        {L"\t", L"\"\t\""},
        {LR"(C:\Games\Kelvane)", LR"("C:\Games\Kelvane")"},
        {LR"(C:\My Games\)", LR"("C:\My Games\\")"},
        {LR"(C:\)", LR"("C:\\")"},
        {LR"(\\server\share\)", LR"("\\server\share\\")"},
        {LR"(\)", LR"("\\")"},
        {LR"(\\)", LR"("\\\\")"},
        {LR"(")", LR"("\"")"},
        {LR"("")", LR"("\"\"")"},
        {LR"(a"b)", LR"("a\"b")"},
        {LR"(a\"b)", LR"("a\\\"b")"},
        {LR"(a\\"b)", LR"("a\\\\\"b")"},
        {LR"(a\\b)", LR"("a\\b")"},
        {LR"("\)", LR"("\"\\")"},
        {LR"(\"\)", LR"("\\\"\\")"},
        {LR"(\a\\"\\)", LR"("\a\\\\\"\\\\")"},
        {LR"(a\b"c)", LR"("a\b\"c")"},
        {L"\x00f6\x4e16", L"\"\x00f6\x4e16\""},
        {L"%PATH% ^&|<>'", L"\"%PATH% ^&|<>'\""},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(quoteCommandLineArgument(row.text), row.quoted) << ::testing::PrintToString(row.text);
        expectReadBack({row.text});
    }
}

// Every text of up to five characters from an alphabet of three that have a meaning and one that has none.
TEST(CommandLineQuoting, IsReadBackExactlyForEveryShortText) {
    const std::wstring alphabet = L"\\\" a";
    Words texts = {L""};
    for (std::size_t i = 0; texts[i].size() < 5; ++i)
        for (const wchar_t c : alphabet)
            texts.push_back(texts[i] + c);
    ASSERT_EQ(texts.size(), 1U + 4 + 16 + 64 + 256 + 1024);
    for (const std::wstring& text : texts)
        expectReadBack({text});
}

TEST(CommandLineQuoting, KeepsNeighbouringArgumentsApart) {
    expectReadBack({L"-xf", LR"(C:\My Games\.kvn-update\package.zip)", L"-C", LR"(C:\My Games\staging\)"});
    expectReadBack({L"", L"", L"a", L""});
    expectReadBack({LR"(\)", LR"(")", LR"(\")", L" ", LR"(a\)", LR"(\\)", L"end"});
}

TEST(CommandLineQuoting, KeepsLongRunsOfBackslashes) {
    for (const std::size_t length : {63U, 64U, 1000U}) {
        const std::wstring run(length, L'\\');
        EXPECT_EQ(quoteCommandLineArgument(run).size(), 2 * length + 2);
        EXPECT_EQ(quoteCommandLineArgument(run + L"a").size(), length + 3);
        EXPECT_EQ(quoteCommandLineArgument(run + L"\"").size(), 2 * length + 4);
        expectReadBack({run, run + L"a", run + L"\"", L"a" + run});
    }
}

TEST(CommandLineQuoting, TakesOnlyTheViewItWasGiven) {
    EXPECT_EQ(quoteCommandLineArgument(std::wstring_view(L"abc\"").substr(0, 3)), L"\"abc\"");
}

}  // namespace
}  // namespace vorthmere::update
