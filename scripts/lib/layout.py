"""What the scripts know about the folders of the sources. Enter a new folder here."""

# The project's headers that a folder may include, besides its own.
MAY_INCLUDE = {
    "platform": [],
    "files": ["platform/*"],
    "update": ["files/*", "platform/*"],
    "transfer": ["update/*", "files/*", "platform/*"],
    "install": ["update/*", "files/*", "platform/*"],
    "updater": ["transfer/*", "install/*", "update/*", "files/*", "platform/*"],
    # On Windows the tool looks at a served channel with the updater's own client, and writes paths as the updater does.
    "publisher": ["update/*", "transfer/downloads.h", "transfer/https_client.h", "platform/entries.h",
                  "platform/windows/system_path.h"],
}

# Each rule: the complaint, the headers that must not be included, and the files for which it holds.
KEPT_OUT = [
    ("a Windows header outside platform/windows, the window and the entry point",
     ["windows.h", "winhttp.h", "bcrypt.h", "commctrl.h", "shellapi.h"],
     ["platform", "files", "update", "transfer", "install", "updater", "publisher", ":!*/windows/*",
      ":!updater/main*", ":!updater/posted_record*", ":!updater/progress_window*", ":!updater/worker*"]),
    ("a file stream, clock, thread or random number in the core",
     ["fstream", "iostream", "chrono", "thread", "random"],
     ["files", "update", "transfer", "install", "updater", ":!updater/main.cpp"]),
]

# The core uses std::filesystem only for paths as text. Everything that reads or changes a disk goes through platform/.
PAST_THE_DOOR = (r"\bfilesystem::(absolute|canonical|copy|create|current|directory|equivalent|exists|file_size|is_\w+|last_\w+"
                 r"|permissions|proximate|read_\w+|recursive\w+|relative|remove|rename|resize\w+|space|status|symlink\w+"
                 r"|temp\w+|weakly\w+)\w*\(")
CORE = ["files", "update", "transfer", "install", "updater", "platform", ":!platform/posix"]

# The folders that raise the sentences of docs/failures.md, and the files with texts that are no failures.
RAISES_SENTENCES = ["files", "update", "transfer", "install", "updater"]
WINDOW_TEXTS = "updater/progress_window.cpp"
STEP_TEXTS = "update/timetable.h"

# The folders that clang-tidy checks, each with a preset that compiles it, and the sources that the preset leaves out.
TIDY = {
    "publisher": "linux-release",
    "updater": "windows-test",
    "transfer": "windows-test",
    "install": "windows-test",
    "files": "windows-test",
    "platform": "windows-test",
    "update": "linux-release",
}
LEFT_OUT = {"windows-test": [":!platform/posix", ":!publisher/posix"], "linux-release": [":!platform/windows", ":!publisher/windows"]}

# The release of clang-format and clang-tidy that counts.
JUDGING_CLANG = 14
