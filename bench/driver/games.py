"""Makes game folders, publishes them, and lays out installations of them."""
import random
import shutil
import subprocess
import zipfile

from checkout import PUBLISHER

MIB = 1 << 20
REQUIRED = ["Vorthmere.exe", "KVNUpdater.exe"]
# Written by the publisher into every release.
PUBLISHED = ["KVN_MANAGED_FILES.txt", "kvn_release.txt"]
FOLDERS = 20
RELEASE = 42

REPEATED_BLOCK = 16384
FRAGMENT = 512


def file_name(number):
    if number < len(REQUIRED):
        return REQUIRED[number]
    return f"data/part {number % FOLDERS:02}/asset-{number:04}.dat"


def _write(folder, name, content):
    file = folder / name
    file.parent.mkdir(parents=True, exist_ok=True)
    file.write_bytes(content)


def make_even_game(folder, files, total, packed_every):
    """Makes a game whose release has `files` files: equally large ones with `total` bytes, and what the publisher adds.

    One file of `packed_every` cannot be compressed. The others shrink to almost nothing.
    """
    source = random.Random(42)
    files -= len(PUBLISHED)
    for number in range(files):
        size = total * (number + 1) // files - total * number // files
        if number % packed_every == packed_every - 1:
            content = source.randbytes(size)
        else:
            content = source.randbytes(REPEATED_BLOCK) * (size // REPEATED_BLOCK + 1)
        _write(folder, file_name(number), content[:size])


def _text_fragments(source):
    words = ["".join(source.choices("abcdefghijklmnopqrstuvwxyz_", k=source.randint(3, 9))) for _ in range(100)]
    pool = []
    for _ in range(4096):
        record = ""
        while len(record) < FRAGMENT:
            record += f"{source.choice(words)}.{source.choice(words)}={source.randint(0, 63)}\n"
        pool.append(record[:FRAGMENT].encode())
    return pool


def make_varied_game(folder, files, total, repetitive):
    """Makes a game like a real one, with files from a fraction of their mean size to several times that.

    Every fourth file cannot be compressed, like sound and textures in packed formats. The others are records of text,
    which deflate shrinks to about a quarter. In a `repetitive` game only every eighth file is packed, and the texts in
    a file repeat soon: otherwise the package of the largest possible release would be too large.
    """
    source = random.Random(42)
    shares = [source.expovariate(1) + 0.07 for _ in range(files)]
    sizes = [int(share * total / sum(shares)) for share in shares]
    sizes[0] += total - sum(sizes)
    pool = _text_fragments(source)
    packed_every = 8 if repetitive else 4
    for number, size in enumerate(sizes):
        if number % packed_every == packed_every - 1:
            content = source.randbytes(size)
        else:
            fragments = source.sample(pool, 24) if repetitive else pool
            content = b"".join(source.choices(fragments, k=size // FRAGMENT + 1))[:size]
        _write(folder, file_name(number), content)


def make_half_packed_game(folder, files, total):
    """Makes a game of equally large files. Every second cannot be compressed; deflate shrinks the others to half."""
    source = random.Random(42)
    words = [source.randbytes(source.randint(3, 12)) for _ in range(3000)]
    files -= len(PUBLISHED)
    size = total // files
    for number in range(files):
        packed = number % 2 == 1
        content = source.randbytes(size) if packed else b"".join(source.choices(words, k=size // 5))
        _write(folder, file_name(number), content[:size])


def publish(game, channel):
    """Publishes the game on the channel and returns the path of the package."""
    subprocess.run(
        [PUBLISHER, "build", "--release", str(RELEASE), "--version", "bench", "--protocol", "1", "--from", game,
         "--channel", channel, "--allow-any-programs"],
        stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, check=True)
    return channel / f"KVN-release-{RELEASE}.zip"


def inventory(package):
    """Path and digest of each file of the release, in order."""
    records = package.with_name(package.name + ".files").read_text().splitlines()[5:]
    return [(path, digest) for path, _, digest in (record.split("\t") for record in records)]


class Installation:
    """An installation of the published game, one release old: some files have other content."""

    def __init__(self, folder, game, package, changed):
        self.folder = folder
        self.changed = changed
        shutil.copytree(game, folder)
        with zipfile.ZipFile(package) as archive:
            for name in PUBLISHED:
                archive.extract(name, folder)

    def age(self):
        """Takes the last update back: changes the files that it replaced."""
        shutil.rmtree(self.folder / ".kvn-update", ignore_errors=True)
        for name in self.changed:
            with open(self.folder / name, "r+b") as file:
                first = file.read(1)
                file.seek(0)
                file.write(bytes([first[0] ^ 1]))

    def transfer(self):
        """The last update's transfer report, as a dictionary."""
        report = (self.folder / ".kvn-update" / "transfer.txt").read_text()
        return dict(line.split("=", 1) for line in report.split())


def changed_files(files, count):
    """The names of `count` files, spread over the release."""
    numbers = range(len(REQUIRED), files - len(PUBLISHED))
    step = len(numbers) / count
    return [file_name(numbers[int(i * step)]) for i in range(count)]


def lay_out_for_moving(folder, names, backup_folders):
    """Makes small files to move in folder/game and folder/staging, and the list of their names.

    @param backup_folders  whether to make the files' folders in folder/backup, too
    """
    shutil.rmtree(folder, ignore_errors=True)
    for place in ("game", "staging"):
        for name in names:
            _write(folder / place, name, place.encode())
    for name in names if backup_folders else ["."]:
        (folder / "backup" / name).parent.mkdir(parents=True, exist_ok=True)
    (folder / "list").write_text("".join(name + "\n" for name in names))
