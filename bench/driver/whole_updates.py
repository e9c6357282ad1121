"""Measures whole runs of the updater."""
import games
import wine
from checkout import FIRST_CALLS, NOTHING, UPDATER
from games import MIB
from rows import mebibytes, memory_row, parts
from table import compared
from timing import compare, median_seconds
from updates import UpdateBench


def measure_incremental(sizes, idle):
    what = f"incremental update, 1 of {sizes.files:,} files changed, {mebibytes(sizes.update_bytes)}"
    with UpdateBench("incremental", sizes.files, sizes.update_bytes, 4, changed=1) as bench:
        times = bench.compare_incremental(sizes.repetitions)
        costs = {"digesting every byte twice": 2 * bench.cost_of_digests(sizes.cost_repetitions),
                 "naming the staged files": bench.cost_of_inspecting(sizes.cost_repetitions),
                 "moving the files": bench.cost_of_installing(sizes.cost_repetitions)}
        peak = bench.incremental(wine.peak_private_bytes, bench.local_objects())
    return [compared(f"{what} [s]", times, "at most 1.10"), *parts(times.time.floor, costs),
            memory_row("incremental update", peak, idle)]


def measure_https(sizes, idle):
    what = f"incremental update over HTTPS, 5 % of {mebibytes(sizes.update_bytes)} changed, {sizes.files:,} files"
    with UpdateBench("https", sizes.files, sizes.update_bytes, 4, changed=sizes.files // 20) as bench:
        times, peak = bench.compare_https(sizes.repetitions)
    return [compared(f"{what} [s]", times, "at most 1.15"), memory_row("incremental update over HTTPS", peak, idle)]


def measure_complete(sizes, idle):
    what = f"complete package, {mebibytes(sizes.package_bytes)}"
    with UpdateBench("complete", sizes.files // 4, sizes.package_bytes, 1, changed=1) as bench:
        times = bench.compare_complete(sizes.short_repetitions)
        costs = {"copying the package into the work folder": bench.cost_of_bringing_the_package(sizes.cost_repetitions),
                 "naming the unpacked files": bench.cost_of_inspecting(sizes.cost_repetitions),
                 "moving the files": bench.cost_of_installing(sizes.cost_repetitions)}
        peak = bench.complete(wine.peak_private_bytes)
    return [compared(f"{what} [s]", times, "at most 1.10"), *parts(times.time.floor, costs),
            memory_row("complete package", peak, idle)]


def measure_start(sizes, _idle):
    with UpdateBench("start", 16, MIB, 4, changed=1) as bench:
        current = (UPDATER, "--apply", "--install", bench.installation.folder, "--current", str(games.RELEASE),
                   "--no-relaunch", "--test-no-ui", *bench.local_package())
        times = compare(sizes.starts, lambda: wine.cost_of(*current), lambda: wine.cost_of(NOTHING))
        first_calls = median_seconds(sizes.starts, lambda: wine.cost_of(FIRST_CALLS))
    return [compared("start to \"already current\", without a window [s]", times, "at most 2", digits=3),
            *parts(times.time.floor, {"a program that makes the first calls": first_calls})]
