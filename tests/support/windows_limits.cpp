#include "tests/support/windows_limits.h"

#include <windows.h>
// windows.h has to come first.
#include <winternl.h>

#include <cstddef>
#include <cstdint>
#include <cwchar>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace vorthmere::update::testing {
namespace {

constexpr std::size_t kLongestPath = MAX_PATH - 1;
constexpr std::size_t kLongestNewFolder = MAX_PATH - 13;
constexpr std::size_t kLongestCurrentFolder = MAX_PATH - 2;

bool isWithin(const wchar_t* path, std::size_t longest) {
    if (std::wstring_view(path).starts_with(L"\\\\?\\")) return true;
    return GetFullPathNameW(path, 0, nullptr, nullptr) <= longest + 1;
}

template <typename Result>
Result refuse(DWORD error, Result result) {
    SetLastError(error);
    return result;
}

/// The place in this program's import table that holds the address of a function.
void** importedAddress(std::string_view function) {
    auto* const base = reinterpret_cast<std::byte*>(GetModuleHandleW(nullptr));
    const auto* const dos = reinterpret_cast<IMAGE_DOS_HEADER*>(base);
    const auto* const headers = reinterpret_cast<IMAGE_NT_HEADERS*>(base + dos->e_lfanew);
    const IMAGE_DATA_DIRECTORY& imports = headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
    for (auto* library = reinterpret_cast<IMAGE_IMPORT_DESCRIPTOR*>(base + imports.VirtualAddress); library->Name != 0;
         ++library) {
        const auto* name = reinterpret_cast<IMAGE_THUNK_DATA*>(base + library->OriginalFirstThunk);
        auto* address = reinterpret_cast<IMAGE_THUNK_DATA*>(base + library->FirstThunk);
        for (; name->u1.AddressOfData != 0; ++name, ++address) {
            if (IMAGE_SNAP_BY_ORDINAL(name->u1.Ordinal)) continue;
            const auto* const import = reinterpret_cast<IMAGE_IMPORT_BY_NAME*>(base + name->u1.AddressOfData);
            if (function == reinterpret_cast<const char*>(&import->Name[0]))
                return reinterpret_cast<void**>(&address->u1.Function);
        }
    }
    throw std::runtime_error("this program does not call " + std::string(function));
}

void exchange(void** place, void* function) {
    DWORD before = 0;
    VirtualProtect(place, sizeof(*place), PAGE_READWRITE, &before);
    *place = function;
    VirtualProtect(place, sizeof(*place), before, &before);
}

/// One limited call. `Limited` has the function's `name`, and the `call` that replaces it and calls `original`.
template <typename Limited>
struct Limit {
    static inline void** place = nullptr;

    static void set() {
        if (!place) place = importedAddress(Limited::name);
        Limited::original = reinterpret_cast<decltype(Limited::original)>(*place);
        exchange(place, reinterpret_cast<void*>(&Limited::call));
    }
    static void lift() {
        if (place && Limited::original) exchange(place, reinterpret_cast<void*>(Limited::original));
    }
};

struct LimitedCreateFile {
    static constexpr char name[] = "CreateFileW";
    static inline decltype(&CreateFileW) original = nullptr;
    static HANDLE WINAPI call(const wchar_t* path, DWORD access, DWORD share, SECURITY_ATTRIBUTES* security,
                              DWORD disposition, DWORD flags, HANDLE model) {
        if (!isWithin(path, kLongestPath)) return refuse(ERROR_PATH_NOT_FOUND, INVALID_HANDLE_VALUE);
        return original(path, access, share, security, disposition, flags, model);
    }
};

struct LimitedCreateDirectory {
    static constexpr char name[] = "CreateDirectoryW";
    static inline decltype(&CreateDirectoryW) original = nullptr;
    static BOOL WINAPI call(const wchar_t* path, SECURITY_ATTRIBUTES* security) {
        return isWithin(path, kLongestNewFolder) ? original(path, security) : refuse(ERROR_FILENAME_EXCED_RANGE, FALSE);
    }
};

struct LimitedRemoveDirectory {
    static constexpr char name[] = "RemoveDirectoryW";
    static inline decltype(&RemoveDirectoryW) original = nullptr;
    static BOOL WINAPI call(const wchar_t* path) {
        return isWithin(path, kLongestPath) ? original(path) : refuse(ERROR_PATH_NOT_FOUND, FALSE);
    }
};

struct LimitedDeleteFile {
    static constexpr char name[] = "DeleteFileW";
    static inline decltype(&DeleteFileW) original = nullptr;
    static BOOL WINAPI call(const wchar_t* path) {
        return isWithin(path, kLongestPath) ? original(path) : refuse(ERROR_PATH_NOT_FOUND, FALSE);
    }
};

struct LimitedMoveFile {
    static constexpr char name[] = "MoveFileExW";
    static inline decltype(&MoveFileExW) original = nullptr;
    static BOOL WINAPI call(const wchar_t* from, const wchar_t* to, DWORD flags) {
        if (!isWithin(from, kLongestPath) || !isWithin(to, kLongestPath)) return refuse(ERROR_PATH_NOT_FOUND, FALSE);
        return original(from, to, flags);
    }
};

struct LimitedCopyFile {
    static constexpr char name[] = "CopyFileW";
    static inline decltype(&CopyFileW) original = nullptr;
    static BOOL WINAPI call(const wchar_t* from, const wchar_t* to, BOOL failIfExists) {
        if (!isWithin(from, kLongestPath) || !isWithin(to, kLongestPath)) return refuse(ERROR_PATH_NOT_FOUND, FALSE);
        return original(from, to, failIfExists);
    }
};

struct LimitedGetFileAttributes {
    static constexpr char name[] = "GetFileAttributesW";
    static inline decltype(&GetFileAttributesW) original = nullptr;
    static DWORD WINAPI call(const wchar_t* path) {
        return isWithin(path, kLongestPath) ? original(path) : refuse(ERROR_PATH_NOT_FOUND, INVALID_FILE_ATTRIBUTES);
    }
};

struct LimitedGetFileAttributesEx {
    static constexpr char name[] = "GetFileAttributesExW";
    static inline decltype(&GetFileAttributesExW) original = nullptr;
    static BOOL WINAPI call(const wchar_t* path, GET_FILEEX_INFO_LEVELS level, void* information) {
        return isWithin(path, kLongestPath) ? original(path, level, information) : refuse(ERROR_PATH_NOT_FOUND, FALSE);
    }
};

struct LimitedSetFileAttributes {
    static constexpr char name[] = "SetFileAttributesW";
    static inline decltype(&SetFileAttributesW) original = nullptr;
    static BOOL WINAPI call(const wchar_t* path, DWORD attributes) {
        return isWithin(path, kLongestPath) ? original(path, attributes) : refuse(ERROR_PATH_NOT_FOUND, FALSE);
    }
};

struct LimitedFindFirstFile {
    static constexpr char name[] = "FindFirstFileExW";
    static inline decltype(&FindFirstFileExW) original = nullptr;
    static HANDLE WINAPI call(const wchar_t* pattern, FINDEX_INFO_LEVELS level, void* found, FINDEX_SEARCH_OPS search,
                              void* filter, DWORD flags) {
        if (!isWithin(pattern, kLongestPath)) return refuse(ERROR_PATH_NOT_FOUND, INVALID_HANDLE_VALUE);
        return original(pattern, level, found, search, filter, flags);
    }
};

struct LimitedCreateProcess {
    static constexpr char name[] = "CreateProcessW";
    static inline decltype(&CreateProcessW) original = nullptr;
    static BOOL WINAPI call(const wchar_t* program, wchar_t* commandLine, SECURITY_ATTRIBUTES* process,
                            SECURITY_ATTRIBUTES* thread, BOOL inherit, DWORD flags, void* environment,
                            const wchar_t* folder, STARTUPINFOW* startup, PROCESS_INFORMATION* created) {
        if (folder && std::wcslen(folder) > kLongestCurrentFolder) return refuse(ERROR_DIRECTORY, FALSE);
        return original(program, commandLine, process, thread, inherit, flags, environment, folder, startup, created);
    }
};

/// Wine's function fails for names of more than some 260 characters; that of Windows does not.
struct UnlimitedFinalPath {
    static constexpr char name[] = "GetFinalPathNameByHandleW";
    static inline decltype(&GetFinalPathNameByHandleW) original = nullptr;
    static DWORD WINAPI call(HANDLE file, wchar_t* path, DWORD size, DWORD flags) {
        const DWORD length = original(file, path, size, flags);
        if (length != 0) return length;
        const std::wstring found = askSystem(file);
        if (found.empty()) return 0;
        if (found.size() >= size) return static_cast<DWORD>(found.size()) + 1;
        found.copy(path, found.size());
        path[found.size()] = L'\0';
        return static_cast<DWORD>(found.size());
    }

private:
    static std::wstring askSystem(HANDLE file) {
        using Query = LONG(WINAPI*)(HANDLE, int, void*, ULONG, ULONG*);
        constexpr int objectName = 1;
        constexpr std::wstring_view systemPrefix = L"\\??\\";
        const auto query = reinterpret_cast<Query>(
            reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "NtQueryObject")));
        std::vector<std::byte> answer(70000);
        ULONG used = 0;
        if (query(file, objectName, answer.data(), static_cast<ULONG>(answer.size()), &used) < 0) return {};
        const auto* const text = reinterpret_cast<UNICODE_STRING*>(answer.data());
        const std::wstring_view known(text->Buffer, text->Length / sizeof(wchar_t));
        if (!known.starts_with(systemPrefix)) return {};
        return L"\\\\?\\" + std::wstring(known.substr(systemPrefix.size()));
    }
};

template <typename... Limited>
struct Limits {
    static void set() {
        (Limit<Limited>::set(), ...);
    }
    static void lift() {
        (Limit<Limited>::lift(), ...);
    }
};

using AllLimits = Limits<LimitedCreateFile, LimitedCreateDirectory, LimitedRemoveDirectory, LimitedDeleteFile,
                         LimitedMoveFile, LimitedCopyFile, LimitedGetFileAttributes, LimitedGetFileAttributesEx,
                         LimitedSetFileAttributes, LimitedFindFirstFile, LimitedCreateProcess, UnlimitedFinalPath>;

}  // namespace

WindowsPathLimits::WindowsPathLimits() {
    AllLimits::set();
}

WindowsPathLimits::~WindowsPathLimits() {
    AllLimits::lift();
}

}  // namespace vorthmere::update::testing
