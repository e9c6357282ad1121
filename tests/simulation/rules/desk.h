#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "tests/simulation/machine.h"

namespace vorthmere::update::simulation {

/// A machine with each kind of entry in C:/Desk, and a second volume, D:.
[[nodiscard]] inline Machine desk(Profile profile = Profile::posixDelete) {
    Machine machine(profile);
    Volume stick;
    stick.name = "D:";
    stick.deletesAtOnce = false;
    machine.files.disk.addVolume(stick);
    FileSystem& files = machine.files;
    files.putFile("C:/Desk/plain", contentOf("plain"));
    files.putFile("C:/Desk/other", contentOf("other"));
    files.putFile("C:/Desk/readonly", contentOf("read-only"), attribute::archive | attribute::readOnly);
    files.putFile("C:/Desk/hidden", contentOf("hidden"), attribute::archive | attribute::hidden);
    files.putFile("C:/Desk/system", contentOf("system"), attribute::archive | attribute::system);
    files.putFile("C:/Desk/folder/inner", contentOf("inner"));
    files.putFile("C:/Desk/program.exe", contentOf("MZ program"));
    files.putFolder("C:/Desk/empty");
    files.putFolder("C:/Desk/kept", attribute::readOnly);
    files.putReparsePoint("C:/Desk/junction", tag::junction, "C:/Desk/folder", true);
    files.putReparsePoint("C:/Desk/filelink", tag::symbolicLink, "plain", false);
    files.putReparsePoint("C:/Desk/folderlink", tag::symbolicLink, "C:/Desk/folder", true);
    files.putReparsePoint("C:/Desk/dangling", tag::symbolicLink, "C:/Desk/nowhere", false);
    files.putReparsePoint("C:/Desk/danglingjunction", tag::junction, "C:/Gone/folder", true);
    files.putReparsePoint("C:/Desk/loop", tag::symbolicLink, "C:/Desk/loop", false);
    files.putReparsePoint("C:/Desk/alias", tag::programAlias, "", false);
    files.putFile("C:/Desk/cloud", contentOf("cloud"), attribute::archive | attribute::reparsePoint);
    files.disk.at(files.entryOf("C:/Desk/cloud")).reparseTag = tag::cloudFile;
    files.putFolder("D:/stick");
    machine.beginCaller("C:/Windows/System32/svchost.exe", "C:/Desk");
    return machine;
}

/// A call and the error that it must give.
struct Case {
    std::string what;
    std::function<Error(FileSystem&)> call;
    Error expected = error::none;
};

/// Tries each case on its own desk.
inline void expectAll(const std::vector<Case>& cases, Profile profile = Profile::posixDelete) {
    for (const Case& each : cases) {
        Machine machine = desk(profile);
        EXPECT_EQ(each.call(machine.files), each.expected) << each.what;
    }
}

[[nodiscard]] inline std::string contentAt(const FileSystem& files, std::string_view path) {
    const std::optional<EntryView> view = files.find(path);
    return view && view->content ? *view->content : "(none)";
}

[[nodiscard]] inline std::string spellingOf(const FileSystem& files, std::string_view path) {
    const std::optional<EntryView> view = files.find(path);
    return view ? view->path : "(none)";
}

/// Lets another program open a file on the desk and keep it open.
inline HandleId held(Machine& machine, const std::string& name, unsigned access, unsigned sharing) {
    const ProcessId caller = std::exchange(machine.files.caller, machine.otherProgram);
    HandleId file = 0;
    EXPECT_EQ(machine.files.open("C:/Desk/" + name, access, sharing, false, file), error::none) << name;
    machine.files.caller = caller;
    return file;
}

}  // namespace vorthmere::update::simulation
