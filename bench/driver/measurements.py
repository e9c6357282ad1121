"""The rows of the table, in their order."""
import random
import shutil
import subprocess

import games
import publishing
import wine
from channel import served
from checkout import BENCH, FIRST_CALLS, NOTHING, SHIPPED_UPDATER, UPDATER, WORK, download_base_url
from games import MIB
from table import Row
from timing import compare, least, say, seconds_of_native
from updates import UpdateBench

DOWNLOAD_NAME = "bench.bin"
MEMORY_AIM = "at most 16 MiB above"


class Sizes:
    """How much is measured: everything, or a small part of it while the benchmarks themselves are worked on."""

    def __init__(self, quick):
        shrink = 8 if quick else 1
        self.repetitions = 2 if quick else 5
        self.short_repetitions = 2 if quick else 15
        self.cost_repetitions = 1 if quick else 3
        self.starts = 5 if quick else 40
        self.files = 1000 // shrink
        self.update_bytes = 512 * MIB // shrink
        self.package_bytes = 256 * MIB // shrink
        self.installed_files = 1024
        self.published = [(1000 // shrink, 1024 * MIB // shrink, False)]
        if not quick:
            # With the publisher's two texts this is the largest release: 1,024 files, 2 GiB but for less than 1 MiB.
            self.published.append((1022, 2047 * MIB, True))
        self.publish_repetitions = 1 if quick else 3
        self.growth_repetitions = 1 if quick else 3
        self.growth_files = [64, 256, 1024]
        self.growth_files_bytes = 256 * MIB // shrink
        self.growth_bytes = [size // shrink for size in (64 * MIB, 128 * MIB, 256 * MIB, 512 * MIB, 1024 * MIB)]
        self.growth_bytes_files = 256


def mebibytes(size):
    return f"{size // MIB} MiB"


def memory_row(what, peak, idle):
    return Row(f"memory: {what} [MiB]", peak / MIB, idle / MIB, MEMORY_AIM, digits=1)


def parts(floor, costs):
    """Rows that tell what a figure consists of, each part beside the whole figure's floor."""
    return [Row(f"  of it: {what} [s]", seconds, floor, digits=3) for what, seconds in costs.items()]


def measure_incremental(sizes, idle):
    what = f"incremental update, 1 of {sizes.files:,} files changed, {mebibytes(sizes.update_bytes)}"
    with UpdateBench("incremental", sizes.files, sizes.update_bytes, 4, changed=1) as bench:
        times = bench.compare_incremental(sizes.repetitions)
        costs = {"digesting every byte twice": 2 * bench.cost_of_digests(sizes.cost_repetitions),
                 "naming the staged files": bench.cost_of_inspecting(sizes.cost_repetitions),
                 "moving the files": bench.cost_of_installing(sizes.cost_repetitions)}
        peak = bench.incremental(wine.peak_private_bytes, bench.local_objects())
    return [Row(f"{what} [s]", *times, "at most 1.10"), *parts(times[1], costs),
            memory_row("incremental update", peak, idle)]


def measure_https(sizes, idle):
    what = f"incremental update over HTTPS, 5 % of {mebibytes(sizes.update_bytes)} changed, {sizes.files:,} files"
    with UpdateBench("https", sizes.files, sizes.update_bytes, 4, changed=sizes.files // 20) as bench:
        times, peak = bench.compare_https(sizes.repetitions)
    return [Row(f"{what} [s]", *times, "at most 1.15"), memory_row("incremental update over HTTPS", peak, idle)]


def measure_complete(sizes, idle):
    what = f"complete package, {mebibytes(sizes.package_bytes)}"
    with UpdateBench("complete", sizes.files // 4, sizes.package_bytes, 1, changed=1) as bench:
        times = bench.compare_complete(sizes.short_repetitions)
        costs = {"copying the package into the work folder": bench.cost_of_bringing_the_package(sizes.cost_repetitions),
                 "naming the unpacked files": bench.cost_of_inspecting(sizes.cost_repetitions),
                 "moving the files": bench.cost_of_installing(sizes.cost_repetitions)}
        peak = bench.complete(wine.peak_private_bytes)
    return [Row(f"{what} [s]", *times, "at most 1.10"), *parts(times[1], costs),
            memory_row("complete package", peak, idle)]


def measure_download(sizes, idle):
    folder = WORK / "download"
    channel = folder / "channel"
    channel.mkdir(parents=True)
    with open(channel / DOWNLOAD_NAME, "wb") as file:
        source = random.Random(42)
        for _ in range(sizes.package_bytes // MIB):
            file.write(source.randbytes(MIB))
    url = download_base_url() + DOWNLOAD_NAME
    figure = ("download", url, folder / "figure", sizes.package_bytes)
    with served(channel, WORK / "server"):
        times = compare(sizes.short_repetitions, lambda: wine.seconds_inside(*figure),
                        lambda: wine.seconds_inside("download-floor", url, folder / "floor"))
        peak = wine.peak_private_bytes(BENCH, *figure)
    shutil.rmtree(folder)
    return [Row(f"downloadHttpsFile, {mebibytes(sizes.package_bytes)} [s]", *times, "at most 1.10"),
            memory_row("downloadHttpsFile", peak, idle),
            Row(f"memory: downloading {mebibytes(sizes.package_bytes)}, all of it [MiB]", peak / MIB,
                aim="at most 32", digits=1)]


def measure_install(sizes, idle):
    folder = WORK / "install"
    names = [games.file_name(number) for number in range(sizes.installed_files)]

    def figure():
        games.lay_out_for_moving(folder, names, backup_folders=False)
        return wine.seconds_inside("install", folder, folder / "list")

    def floor():
        games.lay_out_for_moving(folder, names, backup_folders=True)
        return wine.seconds_inside("moves", folder, folder / "list")

    times = compare(sizes.short_repetitions, figure, floor)
    games.lay_out_for_moving(folder, names, backup_folders=False)
    peak = wine.peak_private_bytes(BENCH, "install", folder, folder / "list")
    shutil.rmtree(folder)
    return [Row(f"installing {sizes.installed_files:,} files [s]", *times, "at most 1.5", digits=3),
            memory_row("installing", peak, idle)]


def measure_parsers(sizes, idle):
    lines = [line.split("\t") for line in wine.run(BENCH, "parse", str(sizes.repetitions * 5)).splitlines()]
    names = {"inventory": "parsing the largest inventory", "list": "parsing the largest managed-file list"}
    rows = []
    for kind, name in names.items():
        per_record = {}
        for _, records, size, figure, floor in (line for line in lines if line[0] == kind):
            per_record[int(records)] = float(figure) / int(records)
            last = (int(records), int(size), float(figure), float(floor))
        records, size, figure, floor = last
        fewest = min(per_record)
        rows += [Row(f"{name}, {records:,} records, {size:,} bytes [µs]", figure / 1e3, floor / 1e3, "reported", 1),
                 Row(f"{name}, a record of {records:,}; floor: of {fewest} [ns]", per_record[records],
                     per_record[fewest], "linear: about 1", 0)]
    return rows + [memory_row("parsing", wine.peak_private_bytes(BENCH, "parse", "1"), idle)]


def measure_size(_sizes, _idle):
    return [Row("size of KVNUpdater.exe [bytes]", SHIPPED_UPDATER.stat().st_size, aim=f"at most {MIB:,}", digits=0)]


def measure_start(sizes, _idle):
    with UpdateBench("start", 16, MIB, 4, changed=1) as bench:
        current = (UPDATER, "--apply", "--install", bench.installation.folder, "--current", str(games.RELEASE),
                   "--no-relaunch", "--test-no-ui", *bench.local_package())
        times = compare(sizes.starts, lambda: wine.seconds_of(*current), lambda: wine.seconds_of(NOTHING))
        first_calls = least(sizes.starts, lambda: wine.seconds_of(FIRST_CALLS))
    return [Row("start to \"already current\", without a window [s]", *times, "at most 2", digits=3),
            *parts(times[1], {"a program that makes the first three calls": first_calls})]


MEASUREMENTS = {
    "incremental": measure_incremental,
    "https": measure_https,
    "complete": measure_complete,
    "download": measure_download,
    "install": measure_install,
    "parsers": measure_parsers,
    "size": measure_size,
    "start": measure_start,
    "publish": publishing.measure_publishing,
    "releases": publishing.measure_releases,
}


def measure(sizes, chosen):
    """All rows, timings first and memory behind them."""
    idle = wine.idle_private_bytes()
    rows = []
    for name in chosen:
        say(name)
        rows += MEASUREMENTS[name](sizes, idle)
    return sorted(rows, key=lambda row: row.name.startswith("memory:"))
