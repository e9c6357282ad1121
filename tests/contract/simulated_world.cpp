#include <stdexcept>
#include <string_view>

#include "tests/contract/world.h"
#include "tests/simulation/gate.h"
#include "tests/simulation/passage.h"

namespace vorthmere::update::contract {
namespace {

using simulation::Intrusion;
using simulation::Machine;
using Kind = Intrusion::Kind;

constexpr std::string_view kFolder = "C:/Contract";

class SimulatedWorld : public World {
public:
    SimulatedWorld() : gate_(machine_, {}), running_(gate_) {
        machine_.files.putFolder(kFolder);
        machine_.files.putFile("C:/Programs/updater.exe", simulation::contentOf("MZ updater"));
        machine_.beginCaller("C:/Programs/updater.exe", "C:/");
    }

    [[nodiscard]] std::filesystem::path folder() const override {
        return simulation::pathOf(kFolder);
    }
    [[nodiscard]] bool isWindowsToTheLetter() const override {
        return true;
    }

    std::uint32_t hold(const std::filesystem::path& file, unsigned access, unsigned sharing) override {
        return perform({Kind::open, text(file), "", access, sharing, 0});
    }
    std::uint32_t lock(const std::filesystem::path& file, std::uint64_t bytes) override {
        simulation::HandleId handle = 0;
        machine_.files.caller = machine_.otherProgram;
        const simulation::Error opening = machine_.files.open(text(file), access::read, access::all, false, handle);
        machine_.files.caller = machine_.caller;
        return opening == simulation::error::none ? machine_.files.lock(handle, 0, bytes) : opening;
    }
    std::uint32_t map(const std::filesystem::path& file) override {
        mapped_.push_back(text(file));
        return act(Kind::map, text(file));
    }
    std::uint32_t enter(const std::filesystem::path& folder) override {
        return act(Kind::enterFolder, text(folder));
    }
    void letGo() override {
        act(Kind::release);
        act(Kind::leaveFolder);
        for (const std::string& path : mapped_)
            act(Kind::unmap, path);
        mapped_.clear();
    }

    void link(const std::filesystem::path& link, const std::filesystem::path& target) override {
        const auto leadsTo = machine_.files.find(text(target));
        const bool toFolder = leadsTo && leadsTo->isFolder();
        const Kind kind = toFolder ? Kind::plantFolderLink : Kind::plantFileLink;
        if (act(kind, text(link), text(target)) != simulation::error::none)
            throw std::runtime_error("cannot make a link");
    }

    [[nodiscard]] std::string programBytes() const override {
        return "MZ program";
    }
    std::uint32_t start(const std::filesystem::path& program) override {
        if (act(Kind::startProgram, text(program)) != simulation::error::none)
            throw std::runtime_error("cannot start a program");
        programs_.push_back(machine_.processes.running().back());
        return programs_.back();
    }
    void endPrograms() override {
        for (const simulation::ProcessId id : programs_)
            machine_.processes.end(machine_.files, id, 0);
        programs_.clear();
    }

    [[nodiscard]] std::vector<Deletion> deletions() const override {
        return {Deletion::classic, Deletion::atOnce};
    }
    void choose(Deletion deletion) override {
        machine_.files.volumeOf(kFolder).deletesAtOnce = deletion == Deletion::atOnce;
    }

private:
    static std::string text(const std::filesystem::path& path) {
        return simulation::textOf(path);
    }
    simulation::Error perform(const Intrusion& intrusion) {
        return simulation::act(machine_, intrusion);
    }
    simulation::Error act(Kind kind, const std::string& path = "", const std::string& second = "") {
        return perform({kind, path, second, access::none, access::none, 0});
    }

    Machine machine_;
    simulation::Gate gate_;
    simulation::Running running_;
    std::vector<std::string> mapped_;
    std::vector<simulation::ProcessId> programs_;
};

}  // namespace

std::unique_ptr<World> World::create() {
    return std::make_unique<SimulatedWorld>();
}

}  // namespace vorthmere::update::contract
