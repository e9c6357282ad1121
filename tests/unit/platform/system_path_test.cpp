#include "platform/windows/system_path.h"

#include <gtest/gtest.h>

#include "tests/support/temporary_folder.h"
#include "tests/support/windows_folder.h"

namespace vorthmere::update {
namespace {

std::wstring given(const std::wstring& path) {
    return SystemPath(path).text();
}

/// A path of `length` characters that starts with `begin`.
std::wstring pathOfLength(const std::wstring& begin, std::size_t length) {
    std::wstring path = begin;
    while (path.size() + 2 < length)
        path += L"\\" + std::wstring(std::min<std::size_t>(length - path.size() - 1, 100), L'x');
    path.resize(length, L'x');
    return path;
}

TEST(SystemPathTest, OrdinaryPathsStayAsTheyAre) {
    for (const wchar_t* path : {L"",
                                L"file",
                                L"a folder\\file",
                                L"C:",
                                L"C:\\",
                                L"C:file",
                                L"C:\\a folder\\file.txt",
                                L"C:/a/../b/./c",
                                L"..",
                                L".\\file",
                                L"\\on this drive",
                                L"\\\\server\\share\\file",
                                L"C:\\NULL",
                                L"C:\\COM",
                                L"C:\\console.txt",
                                L"C:\\a.b.c",
                                L"C:\\ leading",
                                L"\\\\.\\NUL",
                                L"\\\\?\\C:\\a.",
                                L"C:\\game\\*"})
        EXPECT_EQ(given(path), path);
}

TEST(SystemPathTest, PathsThatAreTooLongForTheirPlainFormGetTheExtendedOne) {
    const std::wstring longest = pathOfLength(L"C:", 247);
    const std::wstring longer = pathOfLength(L"C:", 248);
    EXPECT_EQ(given(longest), longest);
    EXPECT_EQ(given(longer), L"\\\\?\\" + longer);
    const std::wstring onAShare = pathOfLength(L"\\\\server\\share", 300);
    EXPECT_EQ(given(onAShare), L"\\\\?\\UNC" + onAShare.substr(1));
}

TEST(SystemPathTest, TheExtendedFormIsFoldedAsTheSystemDoesNotFoldIt) {
    const std::wstring rest = pathOfLength(L"", 300);
    EXPECT_EQ(given(L"C:/a/./b//../c" + rest), L"\\\\?\\C:\\a\\c" + rest);
    EXPECT_EQ(given(L"C:\\..\\.." + rest), L"\\\\?\\C:" + rest);
    EXPECT_EQ(given(L"\\\\server\\share\\..\\a" + rest), L"\\\\?\\UNC\\server\\share\\a" + rest);
}

TEST(SystemPathTest, RelativePathsThatAreTooLongStartAtTheCurrentFolder) {
    const std::wstring rest = pathOfLength(L"", 300).substr(1);
    EXPECT_EQ(given(rest), L"\\\\?\\" + (std::filesystem::current_path() / rest).native());
}

TEST(SystemPathTest, NamesThatThePlainFormWouldAlterGetTheExtendedOne) {
    for (const wchar_t* path :
         {L"C:\\NUL", L"C:\\game\\nul.txt", L"C:\\game\\NUL .txt", L"C:\\game\\con .x", L"C:\\game\\aux . .x",
          L"C:\\game\\Com1.log", L"C:\\game\\LPT9", L"C:\\game\\com\u00B9", L"C:\\game\\CONIN$", L"C:\\game\\a.",
          L"C:\\game\\a ", L"C:\\game\\a. \\file", L"C:\\game\\...\\file", L"C:\\prn \\file"})
        EXPECT_EQ(given(path), L"\\\\?\\" + std::wstring(path));
}

TEST(SystemPathTest, AFileOfSuchANameIsMadeAndFoundUnderItsOwn) {
    const testing::TemporaryFolder folder;
    for (const wchar_t* name : {L"NUL .txt", L"con .x", L"aux", L"a.", L"b "}) {
        const std::filesystem::path path = folder / name;
        const HANDLE file = CreateFileW(SystemPath(path).text(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, 0, nullptr);
        EXPECT_NE(file, INVALID_HANDLE_VALUE) << path << GetLastError();
        CloseHandle(file);
        const std::vector<WIN32_FIND_DATAW> entries = testing::entriesIn(folder.path());
        ASSERT_EQ(entries.size(), 1u);
        EXPECT_EQ(entries[0].cFileName, std::wstring(name));
        EXPECT_TRUE(DeleteFileW(SystemPath(path).text()));
    }
}

}  // namespace
}  // namespace vorthmere::update
