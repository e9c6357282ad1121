// DLLs with the names of the system's DLLs lie in the game's folder, where mod loaders put them, and in the folder that
// the program is started in. None of them is ever loaded.

#include <gmock/gmock.h>

#include <array>

#include "tests/end_to_end/support/base_fixture.h"
#include "tests/end_to_end/support/channel.h"
#include "tests/end_to_end/support/files.h"
#include "tests/end_to_end/support/programs.h"

namespace vorthmere::end_to_end {
namespace {

namespace fs = std::filesystem;
using testing::IsEmpty;

/// DLLs that the program loads on first use, that the system's network, cryptography and window code loads, and that
/// mod loaders like to replace. DLLs that every program with a window loads at its start are left out: Windows always
/// takes those from the system, and Wine has no list of them.
constexpr std::array kPlanted = {"winhttp",  "bcrypt",   "comctl32", "webio",   "mswsock", "dnsapi",
                                 "iphlpapi", "schannel", "secur32",  "ncrypt",  "rsaenh",  "cryptnet",
                                 "dbghelp",  "dinput8",  "d3d9",     "d3d11",   "dxgi",    "bcryptprimitives",
                                 "dwmapi",   "winmm",    "wsock32",  "jsproxy", "opengl32"};

class ForeignLibraryTest : public EndToEndTest {
protected:
    ForeignLibraryTest() {
        fs::create_directories(elsewhere_);
        // For most names Wine prefers its own DLL, wherever another one lies. For these two it takes the first that it
        // finds, as Windows does.
        useEnvironment({"WINEDLLOVERRIDES=mscoree=d;mshtml=d;winemenubuilder.exe=d;winhttp=n,b;comctl32=n,b"});
    }

    /// Plants the DLLs beside the program, which is started from another folder.
    void plantBesideTheProgram() {
        plantIn(scenario.installation);
        setCurrentFolder(elsewhere_);
    }

    /// Plants them in the folder from which the program is started.
    void plantInTheCurrentFolder() {
        plantIn(elsewhere_);
        setCurrentFolder(elsewhere_);
    }

    std::vector<std::string> loaded() const {
        std::vector<std::string> names;
        for (const fs::path& folder : {scenario.installation, elsewhere_})
            for (const fs::directory_entry& entry : fs::directory_iterator(folder))
                if (entry.path().extension() == ".loaded") names.push_back(entry.path().filename());
        return names;
    }

    void expectUpdateWithoutForeignCode(const UpdaterCommand& command) {
        SCOPED_TRACE(command.window ? "with its window" : "without a window");
        scenario.reset();
        EXPECT_EQ(runUpdater(command), 0);
        EXPECT_THAT(loaded(), IsEmpty());
        expectRelease42();
    }

    void expectUpdatesWithoutForeignCode() {
        const PlainChannel channel(scenario.release.folder);
        for (const Source source : {Source::channel, Source::completePackage}) {
            UpdaterCommand command = this->command(source);
            expectUpdateWithoutForeignCode(command);
            command.window = true;
            expectUpdateWithoutForeignCode(command);
        }
    }

private:
    void plantIn(const fs::path& folder) {
        for (const std::string name : kPlanted)
            fs::copy_file(foreignLibrary(), folder / (name + ".dll"));
    }

    const fs::path elsewhere_ = scenario.root / "started here";
};

TEST_F(ForeignLibraryTest, BesideTheProgramIsNeverLoaded) {
    plantBesideTheProgram();
    expectUpdatesWithoutForeignCode();
}

TEST_F(ForeignLibraryTest, InTheCurrentFolderIsNeverLoaded) {
    plantInTheCurrentFolder();
    expectUpdatesWithoutForeignCode();
}

}  // namespace
}  // namespace vorthmere::end_to_end
