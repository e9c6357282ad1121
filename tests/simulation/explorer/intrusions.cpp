#include "tests/simulation/explorer/intrusions.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "tests/simulation/explorer/releases.h"
#include "tests/simulation/explorer/tree.h"

namespace vorthmere::update::simulation {
namespace {

using Kind = Intrusion::Kind;

struct Deed {
    Kind kind;
    unsigned access = access::read;
    unsigned sharing = access::none;
};

constexpr std::array kDeeds = {
    Deed{Kind::open, access::read, access::none},
    Deed{Kind::open, access::read, access::read},
    Deed{Kind::open, access::read, access::read | access::write},
    Deed{Kind::open, access::read, access::all},
    Deed{Kind::open, access::write, access::all},
    Deed{Kind::open, access::remove, access::all},
    Deed{Kind::create},
    Deed{Kind::createFolder},
    Deed{Kind::remove},
    Deed{Kind::rename},
    Deed{Kind::setReadOnly},
    Deed{Kind::lock},
    Deed{Kind::map},
    Deed{Kind::plantJunction},
    Deed{Kind::plantFileLink},
    Deed{Kind::plantFolderLink},
    Deed{Kind::enterFolder},
    Deed{Kind::fillDisk},
    Deed{Kind::takeVolumeAway},
    Deed{Kind::startProgram},
};

bool isPath(std::string_view text) {
    return text.size() > 3 && text.substr(1, 2) == ":/";
}

std::vector<std::string> pathsOf(const Call& call) {
    std::vector<std::string> paths;
    const auto add = [&paths](std::string_view path) {
        if (isPath(path) && std::find(paths.begin(), paths.end(), path) == paths.end()) paths.emplace_back(path);
    };
    for (const std::string& path : {call.subject, call.second}) {
        add(path);
        add(parentOf(path));
    }
    return paths;
}

/// The same place in the folders to which junctions lead.
std::string elsewhere(std::string_view path) {
    const bool isInstalled = isAtOrBelow(treeKeyOf(path), treeKeyOf(place::kInstallation));
    return std::string(place::kElsewhere) +
           (isInstalled ? std::string(path.substr(place::kInstallation.size())) : std::string());
}

}  // namespace

std::optional<Intrusion> anyIntrusion(Tape& tape, const Call& call) {
    const std::vector<std::string> paths = pathsOf(call);
    if (paths.empty()) return std::nullopt;
    Intrusion intrusion;
    intrusion.path = tape.anyOf(paths);
    const Deed& deed = tape.anyOf(kDeeds);
    intrusion.kind = deed.kind;
    intrusion.access = deed.access;
    intrusion.sharing = deed.sharing;
    if (deed.kind == Kind::create) intrusion.second = "an intruder's";
    if (deed.kind == Kind::rename) intrusion.second = intrusion.path + ".renamed";
    if (deed.kind == Kind::plantJunction || deed.kind == Kind::plantFileLink || deed.kind == Kind::plantFolderLink)
        intrusion.second = elsewhere(intrusion.path);
    return intrusion;
}

std::optional<Intrusion> endOf(const Intrusion& intrusion) {
    Intrusion end;
    end.path = intrusion.path;
    switch (intrusion.kind) {
        case Kind::open:
        case Kind::lock:
            end.kind = Kind::release;
            return end;
        case Kind::map:
            end.kind = Kind::unmap;
            return end;
        case Kind::enterFolder:
            end.kind = Kind::leaveFolder;
            return end;
        case Kind::fillDisk:
            end.kind = Kind::freeDisk;
            end.number = std::uint64_t{1} << 40;
            return end;
        case Kind::takeVolumeAway:
            end.kind = Kind::bringVolumeBack;
            return end;
        case Kind::startProgram:
            end.kind = Kind::endPrograms;
            return end;
        default:
            return std::nullopt;
    }
}

}  // namespace vorthmere::update::simulation
