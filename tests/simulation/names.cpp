#include "tests/simulation/names.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace vorthmere::update::simulation {
namespace {

constexpr std::size_t kLongestName = 255;

constexpr char upperAscii(char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

/// For each byte, true when no name may hold it.
constexpr std::array<bool, 256> kForbidden = [] {
    std::array<bool, 256> forbidden{};
    for (std::size_t c = 0; c < 0x20; ++c)
        forbidden[c] = true;
    for (const char c : std::string_view("<>:\"|?*"))
        forbidden[static_cast<unsigned char>(c)] = true;
    return forbidden;
}();

/// The capital letter of a letter with two bytes in UTF-8: Latin, Greek or Cyrillic.
std::uint32_t upperLetter(std::uint32_t letter) {
    if (letter >= 0xE0 && letter <= 0xFE && letter != 0xF7) return letter - 0x20;
    if (letter >= 0x100 && letter <= 0x137) return letter & ~1U;
    if (letter >= 0x3B1 && letter <= 0x3CB && letter != 0x3C2) return letter - 0x20;
    if (letter >= 0x430 && letter <= 0x44F) return letter - 0x20;
    if (letter >= 0x450 && letter <= 0x45F) return letter - 0x50;
    return letter;
}

bool isLetterOfTwoBytes(std::string_view text, std::size_t at) {
    return (static_cast<unsigned char>(text[at]) & 0xE0) == 0xC0 && at + 1 < text.size();
}

void appendUpper(std::string& key, char first, char second) {
    const std::uint32_t letter =
        (static_cast<std::uint32_t>(first) & 0x1F) << 6 | (static_cast<std::uint32_t>(second) & 0x3F);
    const std::uint32_t upper = upperLetter(letter);
    key.push_back(static_cast<char>(0xC0 | upper >> 6));
    key.push_back(static_cast<char>(0x80 | (upper & 0x3F)));
}

bool isSeparator(char c) {
    return c == '/' || c == '\\';
}

/// True for a path like "C:/Games/a.pak", which is its own full path. This is the usual case and is found in one pass.
bool isFoldedAlready(std::string_view path) {
    if (path.size() < 4 || path[1] != ':' || path[2] != '/') return false;
    char before = ':';
    for (const char c : path.substr(2)) {
        const bool endsComponent = c == '/' && (before == '/' || before == '.');
        if (c == '\\' || endsComponent || (c == '.' && before == '/')) return false;
        before = c;
    }
    return before != '/' && before != '.' && before != ' ';
}

/// "C:" or "//server/share" at the start of a path with "/" alone.
std::size_t volumeLengthOf(std::string_view path) {
    if (path.size() >= 2 && path[1] == ':') return 2;
    if (!path.starts_with("//")) return 0;
    const std::size_t server = path.find('/', 2);
    if (server == std::string_view::npos) return path.size();
    return std::min(path.find('/', server + 1), path.size());
}

/// Where an ordinary path starts that names no volume, or a volume without a root.
std::string startOf(std::string_view path, std::string_view currentFolder, std::size_t volumeLength) {
    const std::string_view currentVolume = currentFolder.substr(0, volumeLengthOf(currentFolder));
    if (volumeLength == 0) return std::string(path.starts_with('/') ? currentVolume : currentFolder);
    const std::string_view volume = path.substr(0, volumeLength);
    const bool isDriveAlone = volume.size() == 2 && (path.size() == 2 || path[2] != '/');
    return std::string(isDriveAlone && isSameName(volume, currentVolume) ? currentFolder : volume);
}

void dropLastComponent(std::string& path, std::size_t volumeLength) {
    const std::size_t slash = path.find_last_of('/');
    if (slash != std::string::npos && slash >= volumeLength) path.resize(slash);
}

/// Removes all trailing dots and blanks of the last component, but only a single dot of an inner one.
std::string_view trimmed(std::string_view component, bool isLast) {
    if (isLast) return component.substr(0, component.find_last_not_of(". ") + 1);
    const bool endsInOneDot = component.size() > 1 && component.back() == '.' && component[component.size() - 2] != '.';
    return endsInOneDot ? component.substr(0, component.size() - 1) : component;
}

void appendFolded(FullPath& full, std::string_view rest) {
    while (!rest.empty()) {
        const std::string_view component = takeComponent(rest);
        if (component.empty() || component == ".") continue;
        if (component == "..") {
            dropLastComponent(full.text, full.volumeLength);
            continue;
        }
        const bool isLast = rest.empty() && !full.endsInSeparator;
        const std::string_view name = full.isExtended ? component : trimmed(component, isLast);
        if (name.empty()) continue;
        full.text.push_back('/');
        full.text.append(name);
    }
}

}  // namespace

std::string keyOf(std::string_view name) {
    std::string key;
    key.reserve(name.size());
    for (std::size_t i = 0; i < name.size(); ++i) {
        if (isLetterOfTwoBytes(name, i)) {
            appendUpper(key, name[i], name[i + 1]);
            ++i;
        } else {
            key.push_back(upperAscii(name[i]));
        }
    }
    return key;
}

FoldedName::FoldedName(std::string_view name) {
    bool isUsual = name.size() <= usual_.size();
    for (std::size_t i = 0; isUsual && i < name.size(); ++i) {
        isUsual = static_cast<unsigned char>(name[i]) < 0x80;
        usual_[i] = upperAscii(name[i]);
    }
    if (!isUsual) unusual_ = keyOf(name);
    key_ = isUsual ? std::string_view(usual_.data(), name.size()) : std::string_view(unusual_);
}

bool isSameName(std::string_view left, std::string_view right) {
    return left == right || (left.size() == right.size() && keyOf(left) == keyOf(right));
}

std::size_t utf16Length(std::string_view text) {
    std::size_t length = 0;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if ((byte & 0xC0) != 0x80) length += byte >= 0xF0 ? 2 : 1;
    }
    return length;
}

std::string withSlashes(std::string_view path) {
    std::string text(path);
    std::replace(text.begin(), text.end(), '\\', '/');
    return text;
}

Error nameError(std::string_view name) {
    for (const char c : name)
        if (kForbidden[static_cast<unsigned char>(c)]) return error::invalidName;
    const bool isTooLong = name.size() > kLongestName && utf16Length(name) > kLongestName;
    return isTooLong ? error::invalidName : error::none;
}

bool isDeviceName(std::string_view name, bool withExtension) {
    constexpr std::array<std::string_view, 6> plain = {"CON", "PRN", "AUX", "NUL", "CONIN$", "CONOUT$"};
    constexpr std::array<std::string_view, 12> digits = {"1", "2", "3", "4",        "5",        "6",
                                                         "7", "8", "9", "\xC2\xB9", "\xC2\xB2", "\xC2\xB3"};
    if (withExtension) {
        name = name.substr(0, name.find('.'));
        name = name.substr(0, name.find_last_not_of(' ') + 1);
    }
    if (name.size() < 3 || name.size() > 7) return false;
    const std::string key = keyOf(name);
    if (std::find(plain.begin(), plain.end(), key) != plain.end()) return true;
    const bool isPort = key.starts_with("COM") || key.starts_with("LPT");
    return isPort && std::find(digits.begin(), digits.end(), std::string_view(key).substr(3)) != digits.end();
}

FullPath fullPathOf(std::string_view path, std::string_view currentFolder) {
    FullPath full;
    if (isFoldedAlready(path)) {
        full.text = path;
        full.volumeLength = 2;
        return full;
    }
    std::string text = withSlashes(path);
    full.isExtended = text.starts_with("//?/");
    if (full.isExtended) {
        text.erase(0, text.starts_with("//?/UNC/") ? 7 : 4);
        if (text.starts_with('/')) text.insert(0, "/");
    }
    full.endsInSeparator = !text.empty() && isSeparator(text.back());
    const std::size_t volumeLength = volumeLengthOf(text);
    full.text = startOf(text, currentFolder, volumeLength);
    full.volumeLength = volumeLengthOf(full.text);
    if (full.text.ends_with('/')) full.text.pop_back();
    appendFolded(full, std::string_view(text).substr(volumeLength));
    if (full.text.size() == full.volumeLength) full.text.push_back('/');
    return full;
}

std::string_view takeComponent(std::string_view& rest) {
    const std::size_t slash = rest.find('/');
    const std::string_view component = rest.substr(0, slash);
    rest = slash == std::string_view::npos ? std::string_view() : rest.substr(slash + 1);
    return component;
}

}  // namespace vorthmere::update::simulation
