#include <windows.h>

#include <list>
#include <stdexcept>

#include "files/canonical_path.h"
#include "tests/contract/world.h"
#include "tests/support/child_process.h"
#include "tests/support/folder_link.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/windows_handle.h"
#include "tests/support/wine.h"

namespace vorthmere::update::contract {
namespace {

using testing::KernelHandle;
using testing::OpenFile;

struct ViewTraits {
    using Type = void*;
    static Type none() noexcept {
        return nullptr;
    }
    static void close(Type view) noexcept {
        UnmapViewOfFile(view);
    }
};
using View = UniqueHandle<ViewTraits>;

DWORD windowsAccess(unsigned access) {
    return FILE_READ_ATTRIBUTES | ((access & access::read) != 0 ? GENERIC_READ : 0) |
           ((access & access::write) != 0 ? GENERIC_WRITE : 0) | ((access & access::remove) != 0 ? DELETE : 0);
}

DWORD windowsSharing(unsigned sharing) {
    static_assert(access::read == FILE_SHARE_READ && access::write == FILE_SHARE_WRITE &&
                  access::remove == FILE_SHARE_DELETE);
    return sharing;
}

OpenFile open(const std::filesystem::path& path, unsigned access, unsigned sharing, DWORD flags = 0) {
    return OpenFile(CreateFileW(path.c_str(), windowsAccess(access), windowsSharing(sharing), nullptr, OPEN_EXISTING,
                                flags, nullptr));
}

/// A program that runs until it is told to end.
struct Program {
    explicit Program(const std::filesystem::path& path) : process(path, {L"wait", event.name()}) {}
    testing::NamedEvent event;
    testing::ChildProcess process;
};

class WindowsWorld : public World {
public:
    WindowsWorld() {
        std::error_code failure;
        folder_ = weaklyCanonicalPath(temporary_.path(), failure);
        if (failure) throw std::runtime_error("the temporary folder has no name");
    }

    [[nodiscard]] std::filesystem::path folder() const override {
        return folder_;
    }
    [[nodiscard]] bool isWindowsToTheLetter() const override {
        return !testing::runsUnderWine();
    }

    std::uint32_t hold(const std::filesystem::path& file, unsigned access, unsigned sharing) override {
        OpenFile handle = open(file, access, sharing);
        if (!handle) return GetLastError();
        held_.push_back(std::move(handle));
        return 0;
    }
    std::uint32_t lock(const std::filesystem::path& file, std::uint64_t bytes) override {
        OpenFile handle = open(file, access::read, access::all);
        if (!handle) return GetLastError();
        OVERLAPPED begin{};
        if (!LockFileEx(handle.get(), LOCKFILE_EXCLUSIVE_LOCK | LOCKFILE_FAIL_IMMEDIATELY, 0, static_cast<DWORD>(bytes),
                        static_cast<DWORD>(bytes >> 32), &begin))
            return GetLastError();
        held_.push_back(std::move(handle));
        return 0;
    }
    std::uint32_t map(const std::filesystem::path& file) override {
        const OpenFile handle = open(file, access::read, access::all);
        if (!handle) return GetLastError();
        const KernelHandle mapping(CreateFileMappingW(handle.get(), nullptr, PAGE_READONLY, 0, 0, nullptr));
        View view(mapping ? MapViewOfFile(mapping.get(), FILE_MAP_READ, 0, 0, 0) : nullptr);
        if (!view) return GetLastError();
        views_.push_back(std::move(view));
        return 0;
    }
    // A process keeps such a handle of its current folder.
    std::uint32_t enter(const std::filesystem::path& folder) override {
        const DWORD attributes = GetFileAttributesW(folder.c_str());
        if (attributes == INVALID_FILE_ATTRIBUTES) return GetLastError();
        if ((attributes & FILE_ATTRIBUTE_DIRECTORY) == 0) return ERROR_DIRECTORY;
        OpenFile handle(CreateFileW(folder.c_str(), FILE_TRAVERSE | FILE_LIST_DIRECTORY | SYNCHRONIZE,
                                    FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING,
                                    FILE_FLAG_BACKUP_SEMANTICS, nullptr));
        if (!handle) return GetLastError();
        held_.push_back(std::move(handle));
        return 0;
    }
    void letGo() override {
        held_.clear();
        views_.clear();
    }

    void link(const std::filesystem::path& link, const std::filesystem::path& target) override {
        links_.emplace_back(link, target);
    }

    [[nodiscard]] std::string programBytes() const override {
        return testing::childProgramBytes();
    }
    std::uint32_t start(const std::filesystem::path& program) override {
        return programs_.emplace_back(program).process.id();
    }
    void endPrograms() override {
        for (const Program& program : programs_) {
            program.event.set();
            program.process.waitForEnd();
        }
        programs_.clear();
    }

    [[nodiscard]] std::vector<Deletion> deletions() const override {
        DWORD flags = 0;
        GetVolumeInformationW(folder_.root_path().c_str(), nullptr, 0, nullptr, nullptr, &flags, nullptr, 0);
        constexpr DWORD supportsPosixDeletion = 0x400;
        return {(flags & supportsPosixDeletion) != 0 ? Deletion::atOnce : Deletion::classic};
    }
    void choose(Deletion deletion) override {
        if (deletion != deletions().front()) throw std::logic_error("this volume deletes in the other way");
    }

private:
    testing::TemporaryFolder temporary_;
    std::filesystem::path folder_;
    std::list<testing::Link> links_;
    std::list<Program> programs_;
    std::list<OpenFile> held_;
    std::list<View> views_;
};

}  // namespace

std::unique_ptr<World> World::create() {
    return std::make_unique<WindowsWorld>();
}

}  // namespace vorthmere::update::contract
