#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>

#include "tests/simulation/disk.h"
#include "tests/simulation/machine.h"

namespace vorthmere::update::simulation {

/// One entry of a tree.
struct Node {
    std::string path;  ///< as it is spelled
    std::uint32_t attributes = 0;
    std::string linkTarget;
    Content content;  ///< null for a folder or a link

    [[nodiscard]] bool isFile() const {
        return content != nullptr;
    }
};

[[nodiscard]] bool sameContent(const Node& left, const Node& right);
[[nodiscard]] bool same(const Node& left, const Node& right);

/// Everything on a machine, by path in small letters.
using Tree = std::map<std::string, Node, std::less<>>;

[[nodiscard]] Tree treeOf(const Machine& machine);

/// A path in small letters, as trees are ordered by.
[[nodiscard]] std::string treeKeyOf(std::string_view path);

/// True when `path` is `folder` or lies below it; both are keys.
[[nodiscard]] bool isAtOrBelow(std::string_view path, std::string_view folder);

/// The folder of a key, without the slash; empty for a key without one.
[[nodiscard]] std::string_view parentOf(std::string_view key);

/// One line for each entry that is missing ("-"), new ("+") or different ("~"); empty when both are the same.
[[nodiscard]] std::string difference(const Tree& expected, const Tree& actual);

/// A number for the whole of a tree: equal trees have equal ones.
[[nodiscard]] std::uint64_t fingerprintOf(const Tree& tree);

}  // namespace vorthmere::update::simulation
