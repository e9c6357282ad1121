#include "tests/simulation/passage.h"

#include <algorithm>
#include <stdexcept>
#include <type_traits>
#include <vector>

#include "tests/simulation/names.h"

namespace vorthmere::update::simulation {
namespace {

Gate* runningGate = nullptr;

std::string ofUtf8(const std::u8string& text) {
    return {reinterpret_cast<const char*>(text.data()), text.size()};
}

/// The library uses UTF-8 natively on all platforms except Windows.
template <typename Native>
std::string utf8Of(const std::filesystem::path& path, const Native& native) {
    if constexpr (std::is_same_v<Native, std::string>)
        return native;
    else
        return ofUtf8(path.u8string());
}

std::u8string toUtf8Text(std::string_view text) {
    return {reinterpret_cast<const char8_t*>(text.data()), text.size()};
}

bool isDots(std::string_view name) {
    return name == "." || name == "..";
}

/// True for a path with a name that Windows would take for another one.
bool hasAlteredName(std::string_view path) {
    while (!path.empty()) {
        const std::string_view name = takeComponent(path);
        if (name.empty() || isDots(name)) continue;
        if (name.back() == '.' || name.back() == ' ') return true;
        const bool mayBeDevice = std::string_view("CPANLcpanl").find(name.front()) != std::string_view::npos;
        if (mayBeDevice && isDeviceName(name, true)) return true;
    }
    return false;
}

}  // namespace

Running::Running(Gate& gate) {
    if (runningGate != nullptr) throw std::logic_error("two machines cannot run at once");
    runningGate = &gate;
}

Running::~Running() {
    runningGate = nullptr;
}

Gate& currentGate() {
    if (runningGate == nullptr) throw std::logic_error("no machine runs");
    return *runningGate;
}

bool isAnyRunning() {
    return runningGate != nullptr;
}

// The parent of "C:/Games" is "C:/" where the library knows drives, and "C:" elsewhere.
std::string textOf(const std::filesystem::path& path) {
    std::string text = utf8Of(path, path.native());
    std::replace(text.begin(), text.end(), '\\', '/');
    if (text.size() == 2 && text[1] == ':') text.push_back('/');
    return text;
}

std::string systemTextOf(const std::filesystem::path& path) {
    std::string text = textOf(path);
    const bool isAbsolute = text.find(':') == 1 || (text.starts_with("//") && !text.starts_with("//?/"));
    if (!isAbsolute || !hasAlteredName(text)) return text;
    std::vector<std::string_view> names;
    std::string_view rest = text;
    while (!rest.empty()) {
        const std::string_view name = takeComponent(rest);
        if (name == ".." && names.size() > 1) names.pop_back();
        if (!name.empty() && !isDots(name)) names.push_back(name);
    }
    std::string extended = text.starts_with("//") ? "//?/UNC" : "//?";
    for (const std::string_view name : names)
        extended.append("/").append(name);
    return extended;
}

// Converts through a path, because the library converts paths on every platform.
std::string narrowOf(std::wstring_view text) {
    return ofUtf8(std::filesystem::path(text).u8string());
}

std::wstring wideOf(std::string_view text) {
    return std::filesystem::path(toUtf8Text(text)).wstring();
}

std::filesystem::path pathOf(std::string_view text) {
    return std::filesystem::path(toUtf8Text(text)).make_preferred();
}

std::string fileNameOf(void* file) {
    const Machine& machine = currentGate().machine();
    const OpenFile* open = machine.files.openFile(toId(file));
    if (open != nullptr) return open->path;
    return machine.processes.isPipe(toId(file)) ? "a pipe" : "nothing";
}

}  // namespace vorthmere::update::simulation
