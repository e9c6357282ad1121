// What the updater calls before it looks at its command line, and nothing else: loading the DLLs that these calls need
// is the least that it can start in.
#include <windows.h>
// windows.h has to come first.
#include <shellapi.h>

int WINAPI wWinMain(HINSTANCE, HINSTANCE, PWSTR, int) {
    SetErrorMode(SEM_FAILCRITICALERRORS);
    SetProcessDPIAware();
    int argc = 0;
    return LocalFree(CommandLineToArgvW(GetCommandLineW(), &argc)) == nullptr ? 0 : 1;
}
