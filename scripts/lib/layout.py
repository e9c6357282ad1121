"""What the scripts know of the folders of the sources. A new folder is entered here."""

# What a folder may include of the project, besides itself.
MAY_INCLUDE = {
    "platform": [],
    "files": ["platform/*"],
    "update": ["files/*", "platform/*"],
    "transfer": ["update/*", "files/*", "platform/*"],
    "install": ["update/*", "files/*", "platform/*"],
    "updater": ["transfer/*", "install/*", "update/*", "files/*", "platform/*"],
    "publisher": ["update/*"],
}

# Of each rule: what includes one of these headers against it, the headers, and the files for which it holds.
KEPT_OUT = [
    ("a Windows header outside platform/windows, the window and the entry point",
     ["windows.h", "winhttp.h", "bcrypt.h", "commctrl.h", "shellapi.h"],
     ["platform", "files", "update", "transfer", "install", "updater", "publisher", ":!platform/windows",
      ":!updater/main*", ":!updater/posted_record*", ":!updater/progress_window*", ":!updater/worker*"]),
    ("a file stream, clock, thread or random number in the core",
     ["fstream", "iostream", "chrono", "thread", "random"],
     ["files", "update", "transfer", "install", "updater", ":!updater/main.cpp"]),
]

# Where the sentences of docs/failures.md are raised, and the file with the texts of the window, which are no failures.
RAISES_SENTENCES = ["files", "update", "transfer", "install", "updater"]
WINDOW_TEXTS = "updater/progress_window.cpp"

# The folders that clang-tidy looks at, each with a preset that compiles it, and what such a preset leaves out.
TIDY = {
    "publisher": "linux-release",
    "updater": "windows-test",
    "transfer": "windows-test",
    "install": "windows-test",
    "files": "windows-test",
    "platform": "windows-test",
    "update": "linux-release",
}
LEFT_OUT = {"windows-test": [":!platform/posix"], "linux-release": [":!platform/windows"]}

# The release of clang-format and clang-tidy whose judgement counts.
JUDGING_CLANG = 14
