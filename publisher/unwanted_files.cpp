#include "publisher/unwanted_files.h"

#include <array>

#include "publisher/ignore_rules.h"
#include "update/ascii.h"

namespace vorthmere::publish {
namespace {

struct Unwanted {
    std::string_view pattern;  ///< in lower case
    bool isFolder;
    std::string_view kind;
};

constexpr std::string_view kVersionControl = "part of a version control system";
constexpr std::string_view kDesktop = "left behind by a desktop";
constexpr std::string_view kDebugger = "a debugger's database";
constexpr std::string_view kPrivateKey = "named like a private key";

constexpr std::array kUnwanted = {
    Unwanted{".git", true, kVersionControl},
    Unwanted{".git", false, kVersionControl},
    Unwanted{".gitignore", false, kVersionControl},
    Unwanted{".gitattributes", false, kVersionControl},
    Unwanted{".gitmodules", false, kVersionControl},
    Unwanted{".svn", true, kVersionControl},
    Unwanted{".hg", true, kVersionControl},
    Unwanted{".hgignore", false, kVersionControl},
    Unwanted{".bzr", true, kVersionControl},
    Unwanted{"cvs", true, kVersionControl},
    Unwanted{".ds_store", false, kDesktop},
    Unwanted{"._*", false, kDesktop},
    Unwanted{"__macosx", true, kDesktop},
    Unwanted{"thumbs.db", false, kDesktop},
    Unwanted{"desktop.ini", false, kDesktop},
    Unwanted{".directory", false, kDesktop},
    Unwanted{"*.pdb", false, kDebugger},
    Unwanted{"*.ilk", false, kDebugger},
    Unwanted{"*.idb", false, kDebugger},
    Unwanted{"*.dsym", true, kDebugger},
    Unwanted{"*.pem", false, kPrivateKey},
    Unwanted{"*.key", false, kPrivateKey},
    Unwanted{"*.pfx", false, kPrivateKey},
    Unwanted{"*.p12", false, kPrivateKey},
    Unwanted{"*.pvk", false, kPrivateKey},
    Unwanted{"*.ppk", false, kPrivateKey},
    Unwanted{"*.snk", false, kPrivateKey},
    Unwanted{"id_rsa", false, kPrivateKey},
    Unwanted{"id_dsa", false, kPrivateKey},
    Unwanted{"id_ecdsa", false, kPrivateKey},
    Unwanted{"id_ed25519", false, kPrivateKey},
};

}  // namespace

std::string unwantedKind(std::string_view name, bool isFolder) {
    const std::string key = update::toAsciiLower(name);
    for (const Unwanted& unwanted : kUnwanted)
        if (unwanted.isFolder == isFolder && fitsPattern(key, unwanted.pattern)) return std::string(unwanted.kind);
    return {};
}

}  // namespace vorthmere::publish
