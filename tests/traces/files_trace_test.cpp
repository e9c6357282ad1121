#include <algorithm>
#include <array>

#include "platform/changes.h"
#include "platform/entries.h"
#include "platform/failure.h"
#include "platform/streams.h"
#include "tests/support/temporary_folder.h"
#include "tests/traces/trace_fixture.h"

namespace vorthmere::update::traces {
namespace {

using testing::TemporaryFolder;
using testing::writeFile;

class FileTrace : public TraceTest {
protected:
    TemporaryFolder folder;
    std::error_code failure;
};

TEST_F(FileTrace, AListingThatBreaksOffIsAFailureWithWhatWasReadUntilThen) {
    writeFile(folder / L"a", "");
    writeFile(folder / L"b", "");
    static int calls = 0;
    calls = 0;
    const Replaced finding(traced_FindNextFileW, [](HANDLE search, WIN32_FIND_DATAW* found) -> BOOL {
        if (++calls < 3) return FindNextFileW(search, found);
        SetLastError(ERROR_UNEXP_NET_ERR);
        return FALSE;
    });
    EXPECT_EQ(listFolder(folder.path(), failure).size(), 1u);  // besides "." and ".."
    EXPECT_EQ(failure.value(), ERROR_UNEXP_NET_ERR);
}

TEST_F(FileTrace, AFailedClosingIsTold) {
    FileHandle file = createToWrite(folder / L"a", failure);
    ASSERT_TRUE(file);
    const Replaced closing(traced_CloseHandle, [](HANDLE handle) -> BOOL {
        CloseHandle(handle);
        log().emplace_back("close");
        SetLastError(ERROR_DISK_FULL);
        return FALSE;
    });
    EXPECT_EQ(closeFile(std::move(file)).value(), ERROR_DISK_FULL);
    EXPECT_THAT(log(), ElementsAre("close"));
}

TEST_F(FileTrace, ClosingByTheWayKeepsTheLastError) {
    const Replaced closing(traced_CloseHandle, [](HANDLE handle) -> BOOL {
        CloseHandle(handle);
        SetLastError(ERROR_DISK_FULL);
        return FALSE;
    });
    FileHandle file = createToWrite(folder / L"a", failure);
    ASSERT_TRUE(file);
    SetLastError(ERROR_CRC);
    file.reset();
    EXPECT_EQ(lastErrorNumber(), static_cast<std::uint32_t>(ERROR_CRC));
}

TEST_F(FileTrace, AReadAsksForNoMoreThanTheBufferHolds) {
    writeFile(folder / L"a", "0123456789");
    const FileHandle file = openToRead(folder / L"a", failure);
    static DWORD asked = 0;
    const Replaced reading(traced_ReadFile,
                           [](HANDLE handle, void* buffer, DWORD size, DWORD* count, OVERLAPPED* at) -> BOOL {
                               asked = size;
                               EXPECT_EQ(at, nullptr);
                               return ReadFile(handle, buffer, size, count, at);
                           });
    std::array<char, 8> buffer{};
    EXPECT_EQ(readBytes(file, buffer.data(), 4, failure), 4u);
    EXPECT_EQ(asked, 4u);
    EXPECT_EQ(buffer[4], '\0');
}

TEST_F(FileTrace, AFailedReadYieldsNothing) {
    writeFile(folder / L"a", "0123456789");
    const FileHandle file = openToRead(folder / L"a", failure);
    const Replaced reading(traced_ReadFile, [](HANDLE, void*, DWORD, DWORD* count, OVERLAPPED*) -> BOOL {
        *count = 3;
        SetLastError(ERROR_CRC);
        return FALSE;
    });
    std::array<char, 8> buffer{};
    EXPECT_EQ(readBytes(file, buffer.data(), buffer.size(), failure), 0u);
    EXPECT_EQ(failure.value(), ERROR_CRC);
}

TEST_F(FileTrace, AShortWriteIsAFullDisk) {
    const FileHandle file = createToWrite(folder / L"a", failure);
    const Replaced writing(traced_WriteFile, [](HANDLE, const void*, DWORD size, DWORD* count, OVERLAPPED*) -> BOOL {
        *count = size - 1;
        return TRUE;
    });
    EXPECT_EQ(writeBytes(file, "abc", 3).value(), ERROR_DISK_FULL);
}

TEST_F(FileTrace, AFailureWithoutAReasonIsStillOne) {
    const FileHandle file = createToWrite(folder / L"a", failure);
    const Replaced writing(traced_WriteFile, [](HANDLE, const void*, DWORD, DWORD*, OVERLAPPED*) -> BOOL {
        SetLastError(ERROR_SUCCESS);
        return FALSE;
    });
    EXPECT_EQ(writeBytes(file, "abc", 3).value(), ERROR_GEN_FAILURE);
}

TEST_F(FileTrace, AFinalNameThatCannotBeToldIsAFailure) {
    const FileHandle file = openForItsName(folder.path(), failure);
    ASSERT_TRUE(file);
    const Replaced asking(traced_GetFinalPathNameByHandleW, [](HANDLE, wchar_t*, DWORD, DWORD) -> DWORD {
        SetLastError(ERROR_INVALID_FUNCTION);
        return 0;
    });
    EXPECT_EQ(finalPath(file, failure), std::filesystem::path());
    EXPECT_EQ(failure.value(), ERROR_INVALID_FUNCTION);
}

TEST_F(FileTrace, AFinalNameIsTakenWholeHoweverLongAndWithoutItsPrefix) {
    static std::wstring name;
    const Replaced asking(traced_GetFinalPathNameByHandleW,
                          [](HANDLE, wchar_t* text, DWORD size, DWORD flags) -> DWORD {
                              EXPECT_EQ(flags, 0u);
                              log().push_back("ask " + std::to_string(size));
                              if (name.size() >= size) return static_cast<DWORD>(name.size() + 1);
                              std::copy_n(name.c_str(), name.size() + 1, text);
                              return static_cast<DWORD>(name.size());
                          });
    const FileHandle none;
    for (const std::size_t length : {10U, 259U, 260U, 261U, 1000U}) {
        log().clear();
        const std::wstring path = L"C:\\" + std::wstring(length - 7, L'a');
        name = L"\\\\?\\" + path;
        EXPECT_EQ(finalPath(none, failure).native(), path) << length;
        EXPECT_FALSE(failure);
        EXPECT_EQ(log().size(), length < 260 ? 1u : 2u) << length;
    }
    name = L"\\\\?\\UNC\\server\\share\\a";
    EXPECT_EQ(finalPath(none, failure).native(), L"\\\\server\\share\\a");
}

TEST_F(FileTrace, FilesAreOpenedAsTheirHeadersSay) {
    const Replaced creating(traced_CreateFileW,
                            [](const wchar_t*, DWORD access, DWORD sharing, SECURITY_ATTRIBUTES* security,
                               DWORD disposition, DWORD flags, HANDLE model) -> HANDLE {
                                EXPECT_EQ(security, nullptr);
                                EXPECT_EQ(model, nullptr);
                                std::array<char, 64> text{};
                                std::snprintf(text.data(), text.size(), "%lx %lu %lu %lx", access, sharing, disposition,
                                              flags);
                                log().emplace_back(text.data());
                                SetLastError(ERROR_SHARING_VIOLATION);
                                return INVALID_HANDLE_VALUE;
                            });
    for (const auto open : {openToRead, createToWrite, openForItsName}) {
        EXPECT_FALSE(open(L"C:\\a", failure));
        EXPECT_EQ(failure.value(), ERROR_SHARING_VIOLATION);
    }
    EXPECT_THAT(log(), ElementsAre("80000000 3 3 80", "40000000 3 2 80", "80 7 3 2000000"));
}

TEST_F(FileTrace, AMoveReplacesAndMayCopyAndACopyReplacesOnlyWhenItMay) {
    const Replaced moving(traced_MoveFileExW, [](const wchar_t*, const wchar_t*, DWORD flags) -> BOOL {
        log().push_back("move " + std::to_string(flags));
        return TRUE;
    });
    const Replaced copying(traced_CopyFileW, [](const wchar_t*, const wchar_t*, BOOL failsIfExists) -> BOOL {
        log().push_back("copy " + std::to_string(failsIfExists));
        return TRUE;
    });
    EXPECT_FALSE(moveFile(L"a", L"b"));
    EXPECT_FALSE(copyFile(L"a", L"b", Overwrite::yes));
    EXPECT_FALSE(copyFile(L"a", L"b", Overwrite::no));
    EXPECT_THAT(log(), ElementsAre("move 3", "copy 0", "copy 1"));
}

}  // namespace
}  // namespace vorthmere::update::traces
