#include "updater/command_line.h"

#include <algorithm>

#include "fuzz_target.h"

namespace vorthmere::update::fuzz {
namespace {

struct Result {
    bool accepted = false;
    bool convertible = true;
    Arguments arguments;
    std::wstring error;
};

// The array has no room for more pointers, so that the sanitizer sees a read past its end.
Result parse(const std::vector<std::wstring>& argv) {
    std::vector<const wchar_t*> pointers;
    for (const std::wstring& argument : argv)
        pointers.push_back(argument.c_str());
    pointers.shrink_to_fit();
    Result result;
    try {
        result.accepted =
            parseArguments(static_cast<int>(pointers.size()), pointers.data(), result.arguments, result.error);
    } catch (const std::filesystem::filesystem_error&) {
        // Outside Windows, paths consist of bytes, and the library converts only ASCII to them.
        result.convertible = false;
    }
    return result;
}

std::vector<std::wstring> render(const Arguments& arguments) {
    std::vector<std::wstring> argv = {L"KVNUpdater.exe", L"--apply"};
    const auto add = [&argv](const wchar_t* option, const std::wstring& value) {
        if (!value.empty()) argv.insert(argv.end(), {option, value});
    };
    add(L"--object-directory", arguments.objectDirectory.wstring());
    add(L"--inventory-file", arguments.inventoryFile.wstring());
    add(L"--package-file", arguments.packageFile.wstring());
    add(L"--manifest-file", arguments.manifestFile.wstring());
    if (arguments.noRelaunch) argv.emplace_back(L"--no-relaunch");
    add(L"--current", std::to_wstring(arguments.currentRelease));
    if (arguments.testNoUi) argv.emplace_back(L"--test-no-ui");
    argv.insert(argv.end(), {L"--install", arguments.install.wstring()});
    add(L"--parent", std::to_wstring(arguments.parentProcessId));
    return argv;
}

bool equal(const Arguments& a, const Arguments& b) {
    return a.install == b.install && a.manifestFile == b.manifestFile && a.packageFile == b.packageFile &&
           a.inventoryFile == b.inventoryFile && a.objectDirectory == b.objectDirectory &&
           a.parentProcessId == b.parentProcessId && a.currentRelease == b.currentRelease &&
           a.noRelaunch == b.noRelaunch && a.testNoUi == b.testNoUi;
}

bool isDigits(const std::wstring& text) {
    return !text.empty() && text.find_first_not_of(L"0123456789") == std::wstring::npos;
}

// After the program and --apply, an accepted vector holds only flags and pairs of a known option and a value.
void requireEveryArgumentToCount(const std::vector<std::wstring>& argv, const Arguments& arguments,
                                 std::string_view input) {
    bool noRelaunch = false;
    bool testNoUi = false;
    for (std::size_t i = 2; i < argv.size(); ++i) {
        if (argv[i] == L"--no-relaunch") {
            noRelaunch = true;
        } else if (argv[i] == L"--test-no-ui") {
            testNoUi = true;
        } else {
            require(i + 1 < argv.size(), "every option has a value", input);
            const std::wstring& option = argv[i];
            const std::wstring& value = argv[++i];
            const bool matches =
                option == L"--current"            ? isDigits(value) && std::stoull(value) == arguments.currentRelease
                : option == L"--parent"           ? isDigits(value) && std::stoull(value) == arguments.parentProcessId
                : option == L"--install"          ? arguments.install == value
                : option == L"--manifest-file"    ? arguments.manifestFile == value
                : option == L"--package-file"     ? arguments.packageFile == value
                : option == L"--inventory-file"   ? arguments.inventoryFile == value
                : option == L"--object-directory" ? arguments.objectDirectory == value
                                                  : false;
            require(matches, "every option is known and its value arrives", input);
            require(!value.starts_with(L"--"), "no value looks like an option", input);
        }
    }
    require(noRelaunch == arguments.noRelaunch && testNoUi == arguments.testNoUi, "flags arrive", input);
}

// One argument a line. It ends at a NUL, which no argument can hold.
std::vector<std::wstring> splitArguments(std::string_view input) {
    std::vector<std::wstring> argv;
    for (const std::string& line : splitLines(input)) {
        const std::wstring argument = decodeText(line);
        argv.push_back(argument.substr(0, argument.find(L'\0')));
    }
    return argv;
}

}  // namespace

bool tryInput(std::string_view input) {
    const std::vector<std::wstring> argv = splitArguments(input);
    const Result result = parse(argv);
    if (!result.convertible) {
        require(std::any_of(input.begin(), input.end(), [](char c) { return (c & 0x80) != 0; }),
                "any path within ASCII can be made", input);
        return false;
    }
    requireSentenceOnlyOnFailure(result.accepted, std::string(result.error.begin(), result.error.end()), input);
    if (!result.accepted) return false;

    const Arguments& arguments = result.arguments;
    require(argv.size() >= 6 && argv[1] == L"--apply", "--apply stands first", input);
    require(arguments.currentRelease != 0, "the installed release is known", input);
    require(arguments.manifestFile.empty() == arguments.packageFile.empty(), "manifest and package go together", input);
    require(arguments.inventoryFile.empty() == arguments.objectDirectory.empty(), "inventory and objects go together",
            input);
    require(arguments.inventoryFile.empty() || !arguments.manifestFile.empty(), "an inventory needs a manifest", input);
    requireEveryArgumentToCount(argv, arguments, input);

    const Result again = parse(render(arguments));
    require(again.accepted && equal(again.arguments, arguments), "accepted arguments written again read the same",
            input);

    std::vector<std::wstring> changed = argv;
    changed.insert(changed.end(), {L"--install", L"elsewhere"});
    require(!parse(changed).accepted, "no option is accepted twice", input);
    changed = argv;
    changed.emplace_back(L"--parent");
    require(!parse(changed).accepted, "no option is accepted without a value", input);
    changed = argv;
    changed[1] = L"--Apply";
    require(!parse(changed).accepted, "letter case counts", input);
    return true;
}

}  // namespace vorthmere::update::fuzz
