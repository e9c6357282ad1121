"""Measures the updater's single operations."""
import random
import shutil

import games
import wine
from channel import served
from checkout import BENCH, SHIPPED_UPDATER, WORK, download_base_url
from games import MIB
from rows import mebibytes, memory_row
from table import Row, compared
from timing import compare

DOWNLOAD_NAME = "bench.bin"


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
        times = compare(sizes.short_repetitions, lambda: wine.cost_inside(*figure),
                        lambda: wine.cost_inside("download-floor", url, folder / "floor"))
        peak = wine.peak_private_bytes(BENCH, *figure)
    shutil.rmtree(folder)
    return [compared(f"downloadHttpsFile, {mebibytes(sizes.package_bytes)} [s]", times, "at most 1.10"),
            memory_row("downloadHttpsFile", peak, idle),
            Row(f"memory: downloading {mebibytes(sizes.package_bytes)}, all of it [MiB]", peak / MIB,
                aim="at most 32", digits=1)]


def measure_install(sizes, idle):
    folder = WORK / "install"
    names = [games.file_name(number) for number in range(sizes.installed_files)]

    def figure():
        games.lay_out_for_moving(folder, names, backup_folders=False)
        return wine.cost_inside("install", folder, folder / "list")

    def floor():
        games.lay_out_for_moving(folder, names, backup_folders=True)
        return wine.cost_inside("moves", folder, folder / "list")

    times = compare(sizes.short_repetitions, figure, floor)
    games.lay_out_for_moving(folder, names, backup_folders=False)
    peak = wine.peak_private_bytes(BENCH, "install", folder, folder / "list")
    shutil.rmtree(folder)
    return [compared(f"installing {sizes.installed_files:,} files [s]", times, "at most 1.5", digits=3),
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
    return [Row("size of KVNUpdater.exe [bytes]", SHIPPED_UPDATER.stat().st_size, aim=f"at most {768 * 1024:,}", digits=0)]
