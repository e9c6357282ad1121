"""Makes the two releases of a game, and installations of the older one."""
import random
import shutil
import subprocess
import zipfile

from lib.checkout import BUILD

UPDATER = BUILD / "windows-demo" / "KVNUpdater.exe"
PUBLISHER = BUILD / "linux-release" / "kvn-release"
INSTALLED_RELEASE = 41
OFFERED_RELEASE = 42


def _content(name, size):
    """Bytes that are always the same for the same name and cannot be compressed, like packed game data."""
    return random.Random(name).randbytes(size)


def _files(release):
    """The content of each file of a release, by path. The newer release changes, drops and adds a few files."""
    files = {"Vorthmere.exe": _content(f"game {release}", 900_000), "KVNUpdater.exe": UPDATER.read_bytes(),
             "texts/welcome.txt": f"Welcome to release {release}.\n".encode(), "texts/empty.txt": b""}
    for number in range(1, 13):
        files[f"levels/level {number:02}.map"] = _content(f"level {number}", 400_000)
        files[f"models/model_{number:02}.mesh"] = _content(f"model {number}", 250_000)
        files[f"sounds/voices/voice-{number:02}.ogg"] = _content(f"voice {number}", 120_000)
    if release == INSTALLED_RELEASE:
        files["levels/intro.map"] = _content("old intro", 300_000)
        files["texts/old hints.txt"] = b"How it was done before.\n"
    else:
        files["levels/level 07.map"] = _content("level 7, mended", 410_000)
        files["models/model_03.mesh"] = _content("model 3, mended", 250_000)
        files["levels/level 13.map"] = _content("level 13", 380_000)
        files["texts/hints.txt"] = b"How it is done now.\n"
    return files


def _write(folder, files):
    for name, content in files.items():
        (folder / name).parent.mkdir(parents=True, exist_ok=True)
        (folder / name).write_bytes(content)


def publish_releases(folder, channel):
    """Publishes both releases on the channel. kvn-release prints what it does.

    It would refuse the game's program, which is not a real one.
    """
    for release in (INSTALLED_RELEASE, OFFERED_RELEASE):
        game = folder / f"game {release}"
        _write(game, _files(release))
        subprocess.run([PUBLISHER, "build", "--release", str(release), "--version", f"0.9.{release - 40} alpha",
                        "--protocol", "1", "--notes", "Demonstration.", "--from", game, "--channel", channel,
                        "--allow-any-programs"], check=True)
    subprocess.run([PUBLISHER, "check", "--channel", channel], check=True)


def package(channel, release):
    return channel / f"KVN-release-{release}.zip"


def install_older_release(channel, folder):
    """Makes a player's installation: the older release, and the player's own files."""
    shutil.rmtree(folder, ignore_errors=True)
    with zipfile.ZipFile(package(channel, INSTALLED_RELEASE)) as archive:
        archive.extractall(folder)
    _write(folder, {"saves/autosave.dat": b"level 07, 3 lives\n", "texts/my settings.ini": b"volume=11\n"})
