"""The sources that are changed, and the tests that must notice. Enter a new source or test program here."""
import dataclasses


@dataclasses.dataclass(frozen=True)
class Test:
    """A test program: its target, where it lies in the build folder, its arguments, and after how long it hangs."""

    target: str
    program: str
    arguments: tuple = ("--gtest_fail_fast", "--gtest_brief=1")
    seconds: int = 20


@dataclasses.dataclass(frozen=True)
class Group:
    """Sources that the same tests cover, the quickest first, and how these are built."""

    sources: tuple
    tests: tuple
    preset: str
    options: tuple = ()


# Compiling takes longer than most tests, so the code is not optimised. All groups share one build.
PRESET = "linux-coverage"
OPTIONS = ("-DKVN_COVERAGE=OFF", "-DCMAKE_BUILD_TYPE=None", "-DCMAKE_CXX_FLAGS=-D_GLIBCXX_ASSERTIONS",
           "-DCMAKE_PROJECT_INCLUDE=scripts/lib/mutation/precompiled.cmake")

UNIT_TESTS = Test("portable_tests", "tests/unit/portable_tests")
CORE_TESTS = Test("simulated_core_tests", "tests/simulation/core/simulated_core_tests")
CONTRACT = Test("contract_tests", "tests/contract/contract_tests")


def simulation(*amount, seconds):
    """Updates on the simulated Windows; the first finding ends it."""
    return Test("simulate", "simulate", ("--seed", "1", "--findings", "1", *amount), seconds)


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
        tests=(UNIT_TESTS,),
        preset=PRESET,
        options=OPTIONS,
    ),
    Group(
        sources=(
            "updater/hand_over.cpp",
            "updater/update_run.cpp",
            "updater/complete_package.cpp",
            "updater/download_progress.cpp",
            "install/install_with_backup.cpp",
            "install/extracted_tree.cpp",
            "install/archive_tool.cpp",
            "install/installation_check.cpp",
            "install/relaunch.cpp",
            "transfer/incremental_staging.cpp",
            "transfer/downloads.cpp",
            "transfer/https_client.cpp",
            "transfer/file_digest.cpp",
            "transfer/fetch_progress.cpp",
            "transfer/transfer_report.cpp",
            "transfer/transfer_report.h",
            "files/file_changes.cpp",
            "files/file_status.cpp",
            "files/folder_walk.cpp",
            "files/reparse_point.cpp",
            "files/canonical_path.cpp",
        ),
        tests=(
            simulation("--only", "0", seconds=10),
            CORE_TESTS,
            CONTRACT,
            UNIT_TESTS,
            simulation("--every", "200", "--draws", "50", seconds=120),
            simulation("--only", "1", "--every", "17", seconds=120),
        ),
        preset=PRESET,
        options=OPTIONS,
    ),
)
