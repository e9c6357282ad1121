"""Measures publishing: the first release of a channel, and the next one, in which little has changed."""
import os
import random
import shutil
import subprocess
import time

import games
from checkout import PUBLISHER, WORK
from games import MIB
from rows import mebibytes
from table import Row, compared
from timing import compare, cost_of_native


class PublishedGame:
    """A game folder, half of whose files cannot be compressed, and a channel for its releases."""

    def __init__(self, files, total):
        self.folder = WORK / "publish"
        self.game = self.folder / "game"
        self.channel = self.folder / "channel"
        shutil.rmtree(self.folder, ignore_errors=True)
        games.make_half_packed_game(self.game, files, total)
        self.release = 0
        self.processor = []
        self.memory = []

    def start_channel(self):
        shutil.rmtree(self.channel, ignore_errors=True)

    def publish(self):
        """Publishes the next release and returns the seconds that it took. Keeps its processor time and memory."""
        self.release += 1
        os.sync()
        started = time.monotonic()
        tool = subprocess.Popen(
            [PUBLISHER, "build", "--release", str(self.release), "--version", "bench", "--protocol", "1", "--from",
             self.game, "--channel", self.channel, "--allow-any-programs", "--quiet"], stdin=subprocess.DEVNULL)
        _, status, used = os.wait4(tool.pid, 0)
        tool.returncode = os.waitstatus_to_exitcode(status)
        if tool.returncode != 0:
            raise subprocess.CalledProcessError(tool.returncode, tool.args)
        self.processor.append(used.ru_utime + used.ru_stime)
        self.memory.append(used.ru_maxrss * 1024 / MIB)
        return time.monotonic() - started

    def change(self, share):
        """Replaces the content of a share of the files, from 0 to 1, by other content of the same size."""
        source = random.Random(self.release)
        files = sorted(path for path in self.game.rglob("*.dat"))
        for path in source.sample(files, int(len(files) * share)):
            path.write_bytes(source.randbytes(path.stat().st_size))


def measure_releases(sizes, _idle):
    """Compares the first release with its own processor time, and the next release with the first."""
    game = PublishedGame(sizes.files, sizes.update_bytes)
    first, following, processor = [], [], []
    for _ in range(sizes.publish_repetitions):
        game.start_channel()
        first.append(game.publish())
        processor.append(game.processor[-1])
        game.change(0.05)
        following.append(game.publish())
    shutil.rmtree(game.folder)
    best = first.index(min(first))
    name = f"{sizes.files:,} files, {sizes.update_bytes // MIB} MiB, half of it compressible"
    return [
        Row(f"publishing {name}; floor: its own processor time [s]", first[best], processor[best],
            "at most 0.6 with two cores"),
        Row("  the next release, 5 % changed; floor: the first [s]", min(following), first[best], "at most 0.25"),
        Row("memory: publishing [MiB]", max(game.memory), None, "at most 256", digits=1),
    ]


def measure_publishing(sizes, _idle):
    rows = []
    for files, total, repetitive in sizes.published:
        folder = WORK / "publish"
        shutil.rmtree(folder, ignore_errors=True)
        game = folder / "game"
        games.make_varied_game(game, files, total, repetitive)

        def figure():
            shutil.rmtree(folder / "channel", ignore_errors=True)
            return cost_of_native(PUBLISHER, "build", "--release", "1", "--version", "bench", "--protocol", "1",
                                     "--from", game, "--channel", folder / "channel", "--allow-any-programs")

        def floor():
            (folder / "floor.zip").unlink(missing_ok=True)
            digests = "find \"$1\" -type f -print0 | xargs -0 sha256sum"
            return (cost_of_native("bash", "-c", digests, "bash", game) +
                    cost_of_native("bsdtar", "-a", "-cf", folder / "floor.zip", "-C", game, "."))

        times = compare(sizes.publish_repetitions, figure, floor)
        shutil.rmtree(folder)
        rows.append(compared(f"publishing {files:,} files, {mebibytes(total)} [s]", times, "reported"))
    return rows
