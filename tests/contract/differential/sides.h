#pragma once

#include <memory>
#include <string>

#include "tests/contract/differential/steps.h"
#include "tests/contract/world.h"
#include "tests/simulation/machine.h"

namespace vorthmere::update::contract {

/// The attributes that both sides report.
inline constexpr std::uint32_t kComparedAttributes = 0x413;

/// One of the two sides that take the same steps.
class Side {
public:
    Side() = default;
    virtual ~Side() = default;
    Side(const Side&) = delete;
    Side& operator=(const Side&) = delete;

    virtual Answer perform(const Step& step) = 0;
    /// All entries with their contents, after the other programs have let go.
    virtual std::string tree() = 0;
};

/// The simulated machine, by its own functions.
class ModelSide : public Side {
public:
    explicit ModelSide(Deletion deletion);
    Answer perform(const Step& step) override;
    std::string tree() override;

    /// For judging a difference.
    [[nodiscard]] const simulation::Machine& machine() const {
        return machine_;
    }
    [[nodiscard]] static std::string full(const std::string& path);

private:
    simulation::Error act(const Step& step);
    Answer ask(const Step& step);
    Answer readFile(const std::string& path);
    simulation::Error writeFile(const std::string& path);
    Answer list(const std::string& path);
    Answer finalPath(const std::string& path);

    simulation::Machine machine_;
    std::string mapped_;
};

/// The real platform, in a new folder of a world.
class RealSide : public Side {
public:
    RealSide(World& world, const std::filesystem::path& folder);
    ~RealSide() override;
    Answer perform(const Step& step) override;
    std::string tree() override;

private:
    [[nodiscard]] std::filesystem::path at(const std::string& path) const;
    std::uint32_t act(const Step& step);
    Answer ask(const Step& step);
    void listInto(std::string& tree, const std::string& prefix);

    World& world_;
    std::filesystem::path folder_;
};

}  // namespace vorthmere::update::contract
