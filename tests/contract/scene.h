#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include "tests/contract/rules.h"
#include "tests/contract/world.h"

namespace vorthmere::update::contract {

/// A world, and what the tests do in its folder through the platform's functions alone. Paths are relative to the
/// folder and "/" separated. A path that begins with a drive is used as it is. A "?" before a path adds the prefix that
/// lifts the limit of its length.
class Scene {
public:
    std::unique_ptr<World> world = World::create();

    Scene() = default;
    /// Lets go of everything, so that the folder can be removed.
    ~Scene();
    Scene(const Scene&) = delete;
    Scene& operator=(const Scene&) = delete;

    /// Makes paths start in a new, empty folder of this world. That is much cheaper than another world.
    void startAnew();

    [[nodiscard]] std::filesystem::path at(std::string_view path) const;

    /// Makes entries, blank separated: "a" is a file that holds "a", "!a" a read-only and "~a" a hidden one, "a/" a
    /// folder, "!a/" a read-only one, "a->b" a link to b.
    void make(std::string_view entries) const;

    /// All that is in the folder, in byte order: "a=content !b=... c/ c/d=... e@", a link with "@".
    [[nodiscard]] std::string tree() const;

    void write(std::string_view path, std::string_view content) const;
    /// The content of a file, or "cannot be read".
    [[nodiscard]] std::string read(std::string_view path) const;
    /// 0 when there is no such entry.
    [[nodiscard]] std::uint32_t attributesOf(std::string_view path) const;

private:
    std::filesystem::path folder_ = world->folder();
    int folders_ = 0;

    void makeOne(std::string_view entry) const;
    void listInto(std::string& tree, const std::filesystem::path& folder, const std::string& prefix) const;
};

/// How another program holds a file during a call.
struct Hold {
    std::string_view path;
    unsigned access = access::read;
    unsigned sharing = access::none;
};

/// One rule of the contract: what a call returns and leaves in a folder with these entries.
struct Case {
    std::string_view rule;  ///< names it among all rules
    std::string_view entries;
    std::function<std::error_code(const Scene&)> call;
    std::uint32_t expected = 0;   ///< Windows' number
    std::string_view after = {};  ///< the tree after a success; a failure changes nothing
    std::vector<Hold> holds = {};
    std::function<void(World&, const Scene&)> also = nullptr;  ///< what else another program does before
};

/// Tries every case in its own folder.
void expectAll(const std::vector<Case>& cases);

/// The base of the contract's tests.
class ContractTest : public ::testing::Test {
protected:
    Scene scene;
    World& world = *scene.world;
    std::error_code failure{23, std::system_category()};
};

}  // namespace vorthmere::update::contract
