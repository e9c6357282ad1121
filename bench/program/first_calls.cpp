// Calls of the updater's from before it reads its command line. The updater cannot start faster than the DLLs load that
// these calls need.
#include <windows.h>
// windows.h has to come first.
#include <shellapi.h>

int WINAPI wWinMain(HINSTANCE, HINSTANCE, PWSTR, int) {
    SetErrorMode(SEM_FAILCRITICALERRORS);
    SetProcessDPIAware();
    int argc = 0;
    return LocalFree(CommandLineToArgvW(GetCommandLineW(), &argc)) == nullptr ? 0 : 1;
}
