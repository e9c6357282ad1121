#include "tests/kit/updates.h"

#include <windows.h>

#include <functional>
#include <stdexcept>

#include "tests/kit/game.h"
#include "tests/support/child_process.h"
#include "tests/support/held_file.h"
#include "tests/support/junction.h"
#include "tests/support/windows_folder.h"
#include "tests/support/wine.h"

namespace vorthmere::kit {
namespace {

namespace fs = std::filesystem;
namespace testing = update::testing;

constexpr Way kBothWays[] = {Way::incremental, Way::completePackage};

/// Thrown by an update that cannot run on this machine.
struct Skipped : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// An update; returns a remark, mostly empty.
using Update = std::function<std::string()>;

std::string onWine(const char* difference) {
    return testing::runsUnderWine() ? difference : "";
}

std::string updates(Way way) {
    Game game;
    game.update(way);
    game.requireRelease(42);
    game.update(way, 0);
    return {};
}

struct WindowSearch {
    DWORD processId = 0;
    HWND found = nullptr;
};

BOOL CALLBACK lookAtWindow(HWND window, LPARAM parameter) {
    auto& search = *reinterpret_cast<WindowSearch*>(parameter);
    DWORD processId = 0;
    wchar_t name[64] = {};
    GetWindowThreadProcessId(window, &processId);
    GetClassNameW(window, name, 64);
    if (processId != search.processId || std::wstring_view(name) != L"KelvaneUpdaterWindow") return TRUE;
    search.found = window;
    return FALSE;
}

/// Waits for something to happen during a run.
///
/// @return false when the run ends first, or when it has not happened after kRunLimitMs
bool happensDuring(const Program& updater, const std::function<bool()>& hasHappened) {
    const ULONGLONG limit = GetTickCount64() + kRunLimitMs;
    while (!hasHappened())
        if (updater.hasEnded(5) || GetTickCount64() > limit) return false;
    return true;
}

/// Waits for the progress window of a run; null when none comes.
HWND windowOf(const Program& updater) {
    WindowSearch search{updater.id(), nullptr};
    static_cast<void>(happensDuring(updater, [&search] {
        EnumWindows(lookAtWindow, reinterpret_cast<LPARAM>(&search));
        return search.found != nullptr;
    }));
    return search.found;
}

std::string inItsWindow(Way way) {
    Game game;
    const Program updater = game.startUpdater(way, L"--no-relaunch");
    require(windowOf(updater) != nullptr, "no window came");
    require(updater.waitForEnd(kRunLimitMs) == 0, "the updater did not end with 0");
    game.requireRelease(42);
    return {};
}

std::string failureStaysInItsWindow() {
    Game game;
    fs::remove(game.beside(L"local files") / L"KVN alpha.manifest");
    const Program updater = game.startUpdater(Way::incremental, L"--no-relaunch");
    const HWND window = windowOf(updater);
    require(window != nullptr, "no window came");
    const auto sentence = [window] {
        return FindWindowExW(window, nullptr, L"Static", L"Update could not be completed.") != nullptr;
    };
    require(happensDuring(updater, sentence), "the window did not show the failure");
    PostMessageW(window, WM_CLOSE, 0, 0);
    require(updater.waitForEnd(kRunLimitMs) == 11, "the updater did not end with 11");
    game.requireRelease(41);
    return {};
}

std::string waitsForTheGame() {
    Game game;
    const testing::NamedEvent end;
    const testing::ChildProcess running(testing::childProgram(), {L"wait", end.name()});
    const Program updater =
        game.startUpdater(Way::incremental, L"--no-relaunch --test-no-ui --parent " + std::to_wstring(running.id()));
    require(testing::waitForFile(game.work / L"transfer.txt"), "nothing was staged");
    // That nothing happens cannot be waited for: this is long enough for an updater that does not wait to end.
    require(!updater.hasEnded(500), "the updater did not wait for the game");
    game.requireRelease(41);
    end.set();
    require(updater.waitForEnd(kRunLimitMs) == 0, "the updater did not end with 0");
    game.requireRelease(42);
    return {};
}

std::string startsTheGame() {
    Game game;
    const fs::path told = game.beside(L"told by the game.txt");
    const testing::EnvironmentVariable variable(L"KVN_GAME_REPORT", told.native());
    require(game.startUpdater(Way::incremental, L"--test-no-ui").waitForEnd(kRunLimitMs) == 0,
            "the updater did not end with 0");
    require(testing::waitForFile(told), "the game was not started");
    require(testing::readFile(told).find("inherited pipes=0") != std::string::npos, "the game inherited handles");
    return {};
}

std::string heldFile(DWORD shareMode) {
    Game game;
    {
        const testing::HeldFile held(game.install / L"data" / L"maps" / L"first map.pak", shareMode);
        for (const Way way : kBothWays)
            game.update(way, 27);
    }
    game.requireRelease(41);
    game.update(Way::incremental);
    game.requireRelease(42);
    return {};
}

std::string currentFolderOfAnother() {
    Game game;
    const testing::NamedEvent end;
    const fs::path place = game.install / L"data" / L"maps";
    const Program running(testing::childProgram(), L"wait " + end.name(), {}, place);
    game.update(Way::completePackage);
    game.requireRelease(42);
    return {};
}

std::string readOnlyFiles() {
    Game game;
    for (const char* path : {"Vorthmere.exe", "data/dropped.pak", "data/maps/first map.pak"})
        testing::makeReadOnly(game.install / path);
    for (const Way way : kBothWays) {
        game.update(way);
        game.requireRelease(42);
    }
    return {};
}

void junctionOrSkip(const fs::path& junction, const fs::path& target) {
    testing::writeFile(target / L"precious.txt", "not of the installation");
    try {
        testing::makeJunction(junction, target);
    } catch (const std::runtime_error& failure) {
        throw Skipped(failure.what() + onWine(" (Wine makes none)"));
    }
}

void requireTarget(const fs::path& target) {
    require(testing::namesIn(target) == std::set<std::string>{"precious.txt"}, "the junction was followed");
}

std::string junctionInAManagedPath() {
    Game game;
    const fs::path maps = game.install / L"data" / L"maps";
    const fs::path target = game.beside(L"target");
    fs::rename(maps, game.beside(L"maps"));
    junctionOrSkip(maps, target);
    game.update(Way::completePackage, 27);
    requireTarget(target);
    require(RemoveDirectoryW(maps.c_str()), "the junction cannot be removed");
    fs::rename(game.beside(L"maps"), maps);
    game.requireRelease(41);
    return {};
}

std::string junctionAsTheWorkFolder() {
    Game game;
    const fs::path target = game.beside(L"target");
    junctionOrSkip(game.work, target);
    game.update(Way::incremental, 13);
    requireTarget(target);
    require(RemoveDirectoryW(game.work.c_str()), "the junction cannot be removed");
    game.requireRelease(41);
    return {};
}

std::string junctionInTheWorkFolder() {
    Game game;
    const fs::path target = game.beside(L"target");
    fs::create_directories(game.work);
    junctionOrSkip(game.work / L"left over", target);
    game.update(Way::incremental);
    requireTarget(target);
    game.requireRelease(42);
    return {};
}

/// An installation folder of 200 characters and a managed path of 240.
std::string longPath(Way way) {
    constexpr std::size_t longestFolder = 200;
    constexpr std::size_t longestManagedPath = 240;
    std::string path = "data/" + std::string(100, 'a') + "/" + std::string(100, 'b') + "/";
    path.resize(longestManagedPath, 'c');
    const fs::path sample = testing::TemporaryFolder().path();
    // The random number at the end of a temporary folder's name may have more or fewer digits than this one's.
    const std::wstring::size_type before = sample.native().size() + 2;
    Game game(std::wstring(longestFolder - before, L'g'), {{path, "deep"}});
    if (testing::runsUnderWine()) {
        game.update(way, 24);
        game.requireRelease(41);
        return "Wine cannot name open files of more than some 260 characters: refused with 24 there";
    }
    game.update(way);
    game.requireRelease(42);
    game.update(way);
    return {};
}

std::string deviceNames(Way way) {
    Game game(L"a game", {{"data/NUL .txt", "a file"}, {"data/con .x", "a file"}});
    game.update(way);
    game.requireRelease(42);
    return {};
}

std::string foreignLibraries() {
    Game game;
    std::set<std::string> planted;
    for (const wchar_t* name : {L"winhttp", L"bcrypt", L"comctl32", L"version", L"uxtheme", L"dwmapi", L"cryptbase"})
        fs::copy_file(kitFolder() / L"kvn_foreign_library.dll", game.install / (std::wstring(name) + L".dll"));
    const Program updater = game.startUpdater(Way::completePackage, L"--no-relaunch");
    const DWORD code = updater.waitForEnd(kRunLimitMs);
    for (const std::string& name : testing::namesIn(game.install))
        if (name.ends_with(".loaded")) planted.insert(name);
    require(planted.empty(), "loaded from the game's folder: " + (planted.empty() ? "" : *planted.begin()));
    require(code == 0, "the updater ended with " + std::to_string(code));
    return onWine("Wine prefers its own DLLs of most of these names");
}

struct NamedUpdate {
    const char* name;
    Update update;
};

const NamedUpdate kUpdates[] = {
    {"file by file, without a window", [] { return updates(Way::incremental); }},
    {"from the package, unpacked by the system's archive tool", [] { return updates(Way::completePackage); }},
    {"file by file, in its window", [] { return inItsWindow(Way::incremental); }},
    {"from the package, in its window", [] { return inItsWindow(Way::completePackage); }},
    {"a failure stays in its window until that is closed", failureStaysInItsWindow},
    {"a running game is waited for", waitsForTheGame},
    {"the game is started and inherits nothing", startsTheGame},
    {"a file that another program holds: everything comes back", [] { return heldFile(0); }},
    {"a file that another program reads: everything comes back", [] { return heldFile(FILE_SHARE_READ); }},
    {"a folder of the game is another program's current folder", currentFolderOfAnother},
    {"read-only files are replaced", readOnlyFiles},
    {"a junction in the place of a managed folder is refused", junctionInAManagedPath},
    {"a junction in the place of the work folder is refused", junctionAsTheWorkFolder},
    {"a junction in the work folder is removed and not followed", junctionInTheWorkFolder},
    {"a path of 440 characters, file by file", [] { return longPath(Way::incremental); }},
    {"a path of 440 characters, from the package", [] { return longPath(Way::completePackage); }},
    {"names that look like devices, file by file", [] { return deviceNames(Way::incremental); }},
    {"names that look like devices, from the package", [] { return deviceNames(Way::completePackage); }},
    {"DLLs of others beside the program are not loaded", foreignLibraries},
};

}  // namespace

void runUpdates(Report& report) {
    report.heading("Whole updates of a sample game");
    for (const NamedUpdate& update : kUpdates) {
        try {
            const std::string remark = update.update();
            report.passed(update.name, remark);
        } catch (const Skipped& reason) {
            report.skipped(update.name, reason.what());
        } catch (const std::exception& failure) {
            report.failed(update.name, failure.what());
        }
    }
}

}  // namespace vorthmere::kit
