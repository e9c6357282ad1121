#include "tests/simulation/explorer/tree.h"

#include <algorithm>

namespace vorthmere::update::simulation {
namespace {

char smallLetter(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

std::string describe(const Node& node) {
    std::string text = node.path;
    if (node.isFile()) {
        const std::string& bytes = *node.content;
        text += " = \"" + bytes.substr(0, 30) + (bytes.size() > 30 ? "...\"" : "\"");
    } else if (!node.linkTarget.empty()) {
        text += " -> " + node.linkTarget;
    } else {
        text += "/";
    }
    if ((node.attributes & attribute::readOnly) != 0) text += " (read-only)";
    return text;
}

void mix(std::uint64_t& hash, std::string_view bytes) {
    for (const char byte : bytes)
        hash = (hash ^ static_cast<unsigned char>(byte)) * 0x100000001B3;
    hash = (hash ^ 0x1FF) * 0x100000001B3;
}

}  // namespace

bool sameContent(const Node& left, const Node& right) {
    if (left.isFile() != right.isFile() || left.linkTarget != right.linkTarget) return false;
    return !left.isFile() || left.content == right.content || *left.content == *right.content;
}

bool same(const Node& left, const Node& right) {
    return left.path == right.path && left.attributes == right.attributes && sameContent(left, right);
}

std::string treeKeyOf(std::string_view path) {
    std::string key(path);
    std::transform(key.begin(), key.end(), key.begin(), [](char c) { return c == '\\' ? '/' : smallLetter(c); });
    return key;
}

bool isAtOrBelow(std::string_view path, std::string_view folder) {
    return path.starts_with(folder) && (path.size() == folder.size() || path[folder.size()] == '/');
}

std::string_view parentOf(std::string_view key) {
    const std::size_t slash = key.rfind('/');
    return slash == std::string_view::npos ? std::string_view() : key.substr(0, slash);
}

Tree treeOf(const Machine& machine) {
    Tree tree;
    for (EntryView& view : machine.files.entries()) {
        std::string key = treeKeyOf(view.path);
        tree.emplace(std::move(key), Node{std::move(view.path), view.attributes, std::move(view.linkTarget),
                                          view.isFolder() ? nullptr : std::move(view.content)});
    }
    return tree;
}

std::string difference(const Tree& expected, const Tree& actual) {
    std::string text;
    for (const auto& [key, node] : expected) {
        const auto found = actual.find(key);
        if (found == actual.end())
            text += "  - " + describe(node) + "\n";
        else if (!same(node, found->second))
            text += "  ~ " + describe(node) + "  became  " + describe(found->second) + "\n";
    }
    for (const auto& [key, node] : actual)
        if (!expected.contains(key)) text += "  + " + describe(node) + "\n";
    return text;
}

std::uint64_t fingerprintOf(const Tree& tree) {
    std::uint64_t hash = 0xCBF29CE484222325;
    for (const auto& [key, node] : tree) {
        mix(hash, node.path);
        mix(hash, std::string_view(reinterpret_cast<const char*>(&node.attributes), sizeof(node.attributes)));
        mix(hash, node.linkTarget);
        mix(hash, node.isFile() ? std::string_view(*node.content) : std::string_view("\x01"));
    }
    return hash;
}

}  // namespace vorthmere::update::simulation
