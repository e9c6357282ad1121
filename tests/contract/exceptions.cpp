#include "tests/contract/exceptions.h"

#include <array>

namespace vorthmere::update::contract {
namespace {

constexpr std::string_view kActsOnTargets = "Wine sees a link in its folder, but changes what it leads to";
constexpr std::string_view kNoFileLinks = "Wine takes a Unix link to a file for the file";
constexpr std::string_view kNoBrokenLinks = "Wine takes a Unix link to nothing for nothing";
constexpr std::string_view kKeepsSpelling = "Wine renames by the Unix name that is there";
constexpr std::string_view kNoReadOnlyFolders = "Wine does not keep a folder's attribute";
constexpr std::string_view kRootMayWrite = "a read-only file is one without a Unix permission, which root needs not";
constexpr std::string_view kHiddenIsWritten = "Wine does not look at the attribute";
constexpr std::string_view kDotsAreHidden = "Wine hides Unix' hidden files";
constexpr std::string_view kNoDrive = "Wine gives \"file not found\" for what lies on a missing drive";
constexpr std::string_view kLocksOfLocks = "Wine's locks keep off other locks, not other reading and writing";
constexpr std::string_view kLateDeletion = "Wine deletes the file when it is closed and does not mark it before";
constexpr std::string_view kNoImages = "Wine looks at mapped programs, not at mapped data";

constexpr WineException kExceptions[] = {
    {"a link to a folder is removed itself", 145, "[d/ d/a=d/a l@]", kActsOnTargets},
    {"removeTree removes a link and never enters it", 145, "[o/ o/a=o/a t/ t/l@]", kActsOnTargets},
    {"removeTree removes a link alone", 145, "[l@ o/ o/a=o/a]", kActsOnTargets},
    {"a link to a folder moves itself", 0, "[m/ m/a=d/a]", kActsOnTargets},
    {"a link to an empty folder is removed itself", 0, "[]", kActsOnTargets},
    {"a link to a file is deleted itself", 0, "[]", kActsOnTargets},
    {"a link's own attributes are set", 0, "[!a=a !l=a]", kActsOnTargets},
    {"the content behind a link is copied", 0, "[a=a b=a l=a]", kNoFileLinks},
    {"a copy writes through a link", 0, "[a=a b=a l=a]", kNoFileLinks},
    {"a link to nothing is there", 2, "", kNoBrokenLinks},
    {"a link to nothing is removed itself", 2, "[]", kNoBrokenLinks},
    {"a missing file is not opened through a link", 2, "[d/]", kNoBrokenLinks},

    {"a move gives the name as it is written", 0, "[b=a]", kKeepsSpelling},
    {"a file gets another letter case", 0, "[a=a]", kKeepsSpelling},
    {"a folder gets another letter case", 0, "[d/ d/a=d/a]", kKeepsSpelling},

    {"a read-only folder stays", 0, "[]", kNoReadOnlyFolders},
    {"what a read-only folder holds may go", 0, "[d/]", kNoReadOnlyFolders},
    {"a file in a read-only folder is deleted", 0, "[d/]", kNoReadOnlyFolders},
    {"a file moves out of a read-only folder", 0, "[a=d/a d/]", kNoReadOnlyFolders},
    {"a folder becomes read-only and stays a folder", 0, "[d/]", kNoReadOnlyFolders},

    {"a read-only file is not replaced", 0, "[b=a]", kRootMayWrite, true},
    {"a read-only file is not copied over", 0, "[a=a !b=a]", kRootMayWrite, true},
    {"a read-only file is not emptied", 0, "[!a=]", kRootMayWrite, true},
    {"a read-only file is not flushed", 0, "[!a=a]", kRootMayWrite, true},
    {"a hidden file is not copied over", 0, "[a=a ~b=a]", kHiddenIsWritten},
    {"a hidden file is not emptied", 0, "[~a=]", kHiddenIsWritten},
    {"a file is created with a dot in front", 0, "[~.a=]", kDotsAreHidden},

    {"a drive that is not there gives path not found", 2, "", kNoDrive},
    {"a folder on a drive that is not there is not created", 2, "[]", kNoDrive},
    {"a file does not move to a drive that is not there", 2, "[a=a]", kNoDrive},

    {"a locked file is not copied", 0, "[a=a b=a]", kLocksOfLocks},
    {"a locked range is not read", 0, "", kLocksOfLocks},
    {"a locked range is not written", 0, "", kLocksOfLocks},

    {"a pending name tells no attributes", 0, "", kLateDeletion},
    {"a pending name is not opened", 0, "", kLateDeletion},
    {"a pending name is not deleted again", 0, "", kLateDeletion},
    {"no file takes a pending name", 0, "", kLateDeletion},
    {"no folder takes a pending name", 183, "", kLateDeletion},

    {"a finished digest takes no more", 0, "", "Wine's digest begins anew"},
    {"too little memory for a digest is refused", 0, "", "Wine's digest has memory of its own"},
    {"a folder is no program", 6, "", "Wine tells the error of a later step"},

    {"a mapped file is not deleted", 0, "[]", kNoImages},
    {"a folder with an open file does not move", 0, "[e/ e/a=d/a]", "Unix moves folders whatever is open in them"},
    {"a folder's name has no more than 255 characters", 2, "[]", "Wine asks Unix, which finds no such file"},
    {"a file is not copied to a new name that a folder has", 80, "[a=a d/]",
     "Wine finds the name taken before it looks at what has it"},
    {"a file is no folder to list", 123, "", "Wine takes the error of a name that is none"},
};

}  // namespace

std::span<const WineException> wineExceptions() {
    return kExceptions;
}

}  // namespace vorthmere::update::contract
