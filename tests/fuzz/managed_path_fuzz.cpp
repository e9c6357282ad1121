#include <algorithm>
#include <array>
#include <filesystem>

#include "fuzz_target.h"
#include "update/limits.h"
#include "update/managed_path.h"

namespace vorthmere::update::fuzz {
namespace {

// The name that Windows opens for this component: it drops trailing dots and blanks, and takes the text after a colon
// as the name of a stream.
std::string asWindowsOpensIt(std::string component) {
    component = component.substr(0, component.find(':'));
    while (!component.empty() && (component.back() == '.' || component.back() == ' '))
        component.pop_back();
    return component;
}

// Windows opens the same device for "nul", "Nul.txt" and "NUL.tar.gz".
bool namesADevice(std::string_view component) {
    static constexpr std::array devices = {"con",  "prn",  "aux",  "nul",  "com1", "com2", "com3", "com4",
                                           "com5", "com6", "com7", "com8", "com9", "lpt1", "lpt2", "lpt3",
                                           "lpt4", "lpt5", "lpt6", "lpt7", "lpt8", "lpt9"};
    const std::string stem = lowerCase(component.substr(0, component.find('.')));
    return std::find(devices.begin(), devices.end(), stem) != devices.end();
}

void requireThatItStaysBelow(const std::filesystem::path& folder, const std::string& path) {
    const std::filesystem::path joined = folder / path;
    const std::filesystem::path relative = joined.lexically_normal().lexically_relative(folder);
    require(joined.lexically_normal() == joined, "an accepted path has no component that folds away", path);
    require(!relative.empty() && *relative.begin() != "..", "an accepted path stays below its folder", path);
    for (const std::filesystem::path& part : relative) {
        const std::string component = part.string();
        require(component.find('\\') == std::string::npos, "an accepted path has no second separator", path);
        require(asWindowsOpensIt(component) == component, "Windows alters no component of an accepted path", path);
        require(!namesADevice(component), "an accepted path names no device", path);
        require(lowerCase(component) != ".kvn-update", "an accepted path does not name the work folder", path);
    }
}

void requireThatPartsAndCasesAreJudgedAlike(const std::string& path) {
    require(isSafeRelativePath(lowerCase(path), false), "letter case does not matter", path);
    for (std::size_t slash = path.find('/'); slash != std::string::npos; slash = path.find('/', slash + 1)) {
        require(isSafeRelativePath(path.substr(0, slash), false), "a folder of an accepted path is accepted", path);
        require(isSafeRelativePath(path.substr(slash + 1), false), "the rest of an accepted path is accepted", path);
    }
}

void requireThatLinesAddUp(std::string_view input) {
    const std::vector<std::string> expected = splitLines(input);
    std::string_view remaining = input;
    for (const std::string& line : expected) {
        require(!remaining.empty(), "every line of the text is delivered", input);
        require(nextLine(remaining) == line, "lines end at line feeds, without one carriage return", input);
    }
    require(remaining.empty(), "nothing remains behind the last line", input);
}

}  // namespace

bool tryInput(std::string_view input) {
    requireThatLinesAddUp(input);

    const std::string path(input);
    const bool accepted = isSafeRelativePath(input, false);
    const bool acceptedAsFolder = isSafeRelativePath(input, true);
    if (!path.ends_with('/')) {
        require(accepted == acceptedAsFolder, "leave for a trailing slash changes nothing without one", path);
        require(isSafeRelativePath(path + "/", true) == (accepted && path.size() < kMaxManagedPathBytes),
                "a folder is judged like a file, its slash counted", path);
    } else {
        require(!accepted, "a trailing slash needs leave", path);
    }
    if (accepted) {
        require(path.size() <= kMaxManagedPathBytes, "an accepted path has at most 240 bytes", path);
        requireThatItStaysBelow("/game", path);
        requireThatPartsAndCasesAreJudgedAlike(path);
    } else {
        require(!isSafeRelativePath(path + "/x", false), "nothing below a refused path is accepted", path);
        require(!isSafeRelativePath("data/" + path, false), "a refused path is refused at every depth", path);
    }
    return accepted || acceptedAsFolder;
}

}  // namespace vorthmere::update::fuzz
