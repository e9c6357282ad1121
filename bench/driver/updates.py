"""Whole runs of the updater, and for each the least work on the same bytes."""
import shutil

import games
import wine
from channel import served
from checkout import BENCH, UPDATER, WORK, download_base_url
from timing import compare, median_seconds

OBJECT_NAME = "KVN-file-{}.bin"


class UpdateBench:
    """A published game, an installation that is one release old, and a folder for the files of the floor.

    @param files, total   number of the release's files, and their bytes
    @param packed_every   one file of so many cannot be compressed
    @param changed        number of files that the update replaces
    """

    def __init__(self, name, files, total, packed_every, changed):
        self.folder = WORK / name
        shutil.rmtree(self.folder, ignore_errors=True)
        self.channel = self.folder / "channel"
        self.target = self.folder / "floor"
        self.list = self.folder / "list"
        self.changed = games.changed_files(files, changed)
        game = self.folder / "game"
        games.make_even_game(game, files, total, packed_every)
        self.package = games.publish(game, self.channel)
        self.installation = games.Installation(self.folder / "installation", game, self.package, self.changed)
        shutil.rmtree(game)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        shutil.rmtree(self.folder)

    def updater_command(self, *options):
        return (UPDATER, "--apply", "--install", self.installation.folder, "--current", str(games.RELEASE - 1),
                "--no-relaunch", "--test-no-ui", *options)

    def local_package(self):
        return ("--manifest-file", self.channel / "KVN-alpha.manifest", "--package-file", self.package)

    def local_objects(self):
        return (*self.local_package(), "--inventory-file", self.package.with_name(self.package.name + ".files"),
                "--object-directory", self.channel)

    def update(self, measure, options, expected):
        """Runs one update and compares its transfer report with the expected values."""
        self.installation.age()
        result = measure(*self.updater_command(*options))
        transfer = self.installation.transfer()
        if any(transfer.get(key) != value for key, value in expected.items()):
            raise RuntimeError(f"the update went another way: {transfer}")
        return result

    def incremental(self, measure, options):
        return self.update(measure, options, {"mode": "incremental", "downloaded": str(len(self.changed))})

    def complete(self, measure):
        return self.update(measure, self.local_package(), {"mode": "full"})

    def _clear_target(self):
        shutil.rmtree(self.target, ignore_errors=True)
        for name, _ in games.inventory(self.package):
            (self.target / name).parent.mkdir(parents=True, exist_ok=True)

    def _write_list(self, fetched):
        lines = [name + ("\t" + OBJECT_NAME.format(digest) if name in fetched else "")
                 for name, digest in games.inventory(self.package)]
        self.list.write_text("\n".join(lines) + "\n")

    def staging_floor(self, fetch):
        self._clear_target()
        self._write_list(set(self.changed) if fetch else set())
        prefix = [download_base_url()] if fetch else []
        return wine.cost_of(BENCH, "staging-floor", self.installation.folder, self.target, self.list, *prefix)

    def archive_floor(self):
        shutil.rmtree(self.target, ignore_errors=True)
        self.target.mkdir()
        return wine.cost_of(BENCH, "archive-floor", self.package, self.target)

    def compare_incremental(self, repetitions):
        return compare(repetitions, lambda: self.incremental(wine.cost_of, self.local_objects()),
                       lambda: self.staging_floor(fetch=False))

    def compare_https(self, repetitions):
        with served(self.channel, WORK / "server"):
            times = compare(repetitions, lambda: self.incremental(wine.cost_of, ()),
                            lambda: self.staging_floor(fetch=True))
            return times, self.incremental(wine.peak_private_bytes, ())

    def compare_complete(self, repetitions):
        return compare(repetitions, lambda: self.complete(wine.cost_of), self.archive_floor)

    def _install(self):
        folder = self.folder / "moves"
        games.lay_out_for_moving(folder, [name for name, _ in games.inventory(self.package)], backup_folders=False)
        return wine.cost_inside("install", folder, folder / "list")

    # Single parts of an update. They use the release's files, which the floor has left in the target.

    def cost_of_digests(self, repetitions):
        """The time to digest each file of the release once."""
        self._write_list(set())
        return median_seconds(repetitions, lambda: wine.cost_inside("digest", self.target, self.list))

    def cost_of_bringing_the_package(self, repetitions):
        return median_seconds(repetitions, lambda: wine.cost_inside("copy", self.package, self.folder / "package.zip"))

    def cost_of_inspecting(self, repetitions):
        return median_seconds(repetitions, lambda: wine.cost_inside("inspect", self.target))

    def cost_of_installing(self, repetitions):
        return median_seconds(repetitions, self._install)
