#include "publisher/process_arguments.h"

#include <windows.h>

#include <fcntl.h>
#include <io.h>
#include <shellapi.h>

#include <cstdio>
#include <filesystem>
#include <memory>

namespace vorthmere::publish {

std::vector<std::string> processArguments(int, char**) {
    // Lines end as on other systems, and the console learns the encoding of the output.
    _setmode(_fileno(stdout), _O_BINARY);
    _setmode(_fileno(stderr), _O_BINARY);
    SetConsoleOutputCP(CP_UTF8);
    int count = 0;
    const std::unique_ptr<wchar_t*, decltype(&LocalFree)> arguments(CommandLineToArgvW(GetCommandLineW(), &count),
                                                                    &LocalFree);
    std::vector<std::string> texts;
    for (int i = 1; i < count; ++i) {
        const std::u8string text = std::filesystem::path(arguments.get()[i]).u8string();
        texts.emplace_back(text.begin(), text.end());
    }
    return texts;
}

}  // namespace vorthmere::publish
