// Creates a file beside itself when it is loaded, and exports no functions.
#include <windows.h>

#include <string>

BOOL WINAPI DllMain(HINSTANCE library, DWORD reason, void*) {
    if (reason != DLL_PROCESS_ATTACH) return TRUE;
    std::wstring name(32768, L'\0');
    name.resize(GetModuleFileNameW(library, name.data(), static_cast<DWORD>(name.size())));
    name += L".loaded";
    CloseHandle(CreateFileW(name.c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr, CREATE_ALWAYS, 0, nullptr));
    return TRUE;
}
