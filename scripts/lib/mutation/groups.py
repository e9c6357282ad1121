"""The sources that are changed, and the tests that must notice. Enter a new source or test program here."""
import dataclasses


@dataclasses.dataclass(frozen=True)
class Test:
    """A test program: its target, its path in the build folder, and its arguments."""

    target: str
    program: str
    arguments: tuple = ("--gtest_fail_fast", "--gtest_brief=1")


@dataclasses.dataclass(frozen=True)
class Group:
    """Sources that the same tests cover, and how to build the tests."""

    sources: tuple
    tests: tuple
    preset: str
    options: tuple = ()


GROUPS = (
    Group(
        sources=(
            "update/archive_listing.cpp",
            "install/command_line_quoting.cpp",
            "update/limits.h",
            "update/ascii.h",
            "update/decimal.h",
            "update/file_inventory.cpp",
            "update/incremental_update.h",
            "update/inventory_header.cpp",
            "update/managed_file_list.cpp",
            "update/managed_path.cpp",
            "update/manifest.cpp",
            "update/metadata_file.cpp",
            "update/metadata_keys.cpp",
            "update/metadata_keys.h",
            "update/metadata_text.cpp",
            "update/progress.cpp",
            "update/release_channel.cpp",
            "update/sha256_text.cpp",
            "update/sha256_text.h",
            "updater/command_line.cpp",
        ),
        tests=(Test("portable_tests", "tests/unit/portable_tests"),),
        preset="linux-coverage",
        options=("-DKVN_COVERAGE=OFF",),
    ),
)
