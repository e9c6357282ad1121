#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace vorthmere::update::contract {

/// What a handle may do, and what it lets others do, as sums of these. An access of `none` asks for attributes alone.
namespace access {
inline constexpr unsigned none = 0;
inline constexpr unsigned read = 1;
inline constexpr unsigned write = 2;
inline constexpr unsigned remove = 4;
inline constexpr unsigned all = read | write | remove;
}  // namespace access

/// What happens to the name of a deleted file that another program still holds.
enum class Deletion {
    classic,  ///< it stays until the last holder lets go
    atOnce,
};

/// The computer on which the contract is tested, with the other programs on it. The tests reach files through the
/// platform's functions alone.
class World {
public:
    /// A world with its own empty folder.
    ///
    /// @throws std::runtime_error when it cannot be made
    [[nodiscard]] static std::unique_ptr<World> create();
    virtual ~World() = default;
    World(const World&) = delete;
    World& operator=(const World&) = delete;

    /// Absolute, without a link in it.
    [[nodiscard]] virtual std::filesystem::path folder() const = 0;

    /// False under Wine: then the exceptions of exceptions.h hold.
    [[nodiscard]] virtual bool isWindowsToTheLetter() const = 0;

    // What another program does. Each returns Windows' error number, 0 for success.

    /// Opens a file and keeps it open.
    virtual std::uint32_t hold(const std::filesystem::path& file, unsigned access, unsigned sharing) = 0;
    /// Opens a file, shared for everything, and locks its first bytes.
    virtual std::uint32_t lock(const std::filesystem::path& file, std::uint64_t bytes) = 0;
    /// Maps a file as data and closes it.
    virtual std::uint32_t map(const std::filesystem::path& file) = 0;
    /// Makes a folder its current one.
    virtual std::uint32_t enter(const std::filesystem::path& folder) = 0;
    /// Ends what hold(), lock(), map() and enter() began.
    virtual void letGo() = 0;

    /// Makes a symbolic link.
    ///
    /// @throws std::runtime_error when that is impossible
    virtual void link(const std::filesystem::path& link, const std::filesystem::path& target) = 0;

    /// The bytes of a program.
    [[nodiscard]] virtual std::string programBytes() const = 0;
    /// Starts one that runs until endPrograms(). @return its process id
    virtual std::uint32_t start(const std::filesystem::path& program) = 0;
    virtual void endPrograms() = 0;

    /// The ways of deletion that this world can show, and the choice of one of them.
    [[nodiscard]] virtual std::vector<Deletion> deletions() const = 0;
    virtual void choose(Deletion deletion) = 0;

protected:
    World() = default;
};

}  // namespace vorthmere::update::contract
