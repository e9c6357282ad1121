// The updater's calls from before it reads its command line. The updater cannot start faster than the DLLs load that
// these calls need.
#include <windows.h>
// windows.h has to come first.
#include <shellapi.h>

int WINAPI wWinMain(HINSTANCE, HINSTANCE, PWSTR, int) {
    SetDefaultDllDirectories(LOAD_LIBRARY_SEARCH_SYSTEM32);
    SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX | SEM_NOOPENFILEERRORBOX);
    SetProcessDPIAware();
    int argc = 0;
    return LocalFree(CommandLineToArgvW(GetCommandLineW(), &argc)) == nullptr ? 0 : 1;
}
