#include "tests/simulation/passage.h"

#include <stdexcept>

#include "tests/simulation/names.h"

namespace vorthmere::update::simulation {
namespace {

Gate* runningGate = nullptr;

std::string ofUtf8(const std::u8string& text) {
    return {reinterpret_cast<const char*>(text.data()), text.size()};
}

std::u8string toUtf8Text(std::string_view text) {
    return {reinterpret_cast<const char8_t*>(text.data()), text.size()};
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

// The parent of "C:/Games" is "C:/" where the library knows drives, and "C:" elsewhere. Not the generic form: it has
// only one of the separators that "//?/" and "//server/share" begin with.
std::string textOf(const std::filesystem::path& path) {
    std::string text = withSlashes(ofUtf8(path.u8string()));
    if (text.size() == 2 && text[1] == ':') text.push_back('/');
    return text;
}

// Through a path, as the library converts those on every platform.
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
