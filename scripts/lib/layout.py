"""What the scripts know of the folders of the sources. A new folder is entered here."""

# What a folder may include of the project, besides itself.
MAY_INCLUDE = {
    "platform": [],
    "update": ["platform/file_status.h", "platform/text.h"],
    "transfer": ["update/*", "platform/*"],
    "install": ["update/*", "platform/*"],
    "updater": ["transfer/*", "install/*", "update/*", "platform/*"],
    "publisher": ["update/*", "install/archive_tool.h", "install/package_inspection.h", "platform/file_status.h",
                  "platform/text.h"],
}

# Folders that include no header of Windows, and those headers.
PORTABLE = ["update", "publisher"]
WINDOWS_HEADERS = ["windows.h", "winhttp.h", "bcrypt.h", "commctrl.h", "shellapi.h"]

# Where the sentences of docs/failures.md are raised, and the file with the texts of the window, which are no failures.
RAISES_SENTENCES = ["update", "transfer", "install", "updater"]
WINDOW_TEXTS = "updater/progress_window.cpp"

# The folders that clang-tidy looks at, each with a preset that compiles it.
TIDY = {
    "publisher": "linux-release",
    "updater": "windows-test",
    "transfer": "windows-test",
    "install": "windows-test",
    "platform": "windows-test",
    "update": "linux-release",
}
